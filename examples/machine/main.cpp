// How this machine is doing: processor, memory, disk and the time, read once a second.

#include "../Run.h"
#include <QHBoxLayout>
#include <VzCircularClock.h>
#include <VzCircularSpeedometer.h>
#include <fstream>
#include <sys/statvfs.h>

double busyPercent() { // of the time since the last call
    static double lastBusy = 0, lastAll = 0;
    std::ifstream file("/proc/stat");
    file.ignore(3); // "cpu"
    double user = 0, nice = 0, system = 0, idle = 0, wait = 0;
    file >> user >> nice >> system >> idle >> wait;
    const double busy = user + nice + system, all = busy + idle + wait;
    const double worked = busy - std::exchange(lastBusy, busy), passed = all - std::exchange(lastAll, all);
    return passed > 0 ? 100 * worked / passed : 0;
}
double memoryPercent() {
    std::ifstream file("/proc/meminfo"); // total, free and available, one a line: "MemTotal: 123 kB"
    std::string word;
    double total = 0, available = 0;
    file >> word >> total >> word >> word >> available >> word >> word >> available;
    return file ? 100 - 100 * available / total : 0;
}
double diskPercent() { // what is kept for the administrator counts as nobody's, as df does it
    struct statvfs disk;
    if (statvfs("/", &disk) != 0) return 0;
    const double used = double(disk.f_blocks - disk.f_bfree);
    return 100 * used / (used + double(disk.f_bavail));
}

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    QWidget window;
    window.resize(1040, 280);
    window.setPalette(QColor(24, 28, 34));
    QHBoxLayout layout(&window);
    QTimer second;
    const auto add = [&](const char* caption, QColor color, double (*read)()) {
        auto* const gauge = new VzCircularSpeedometer;
        gauge->setCaption(caption);
        gauge->setMaximum(100);
        gauge->setBackfaceColor(color);
        gauge->setCaptionFont(QFont("sans-serif", 11, QFont::Bold));
        gauge->setDecoration(VzCircularSpeedometer::dcNone);
        layout.addWidget(gauge);
        QObject::connect(&second, &QTimer::timeout, gauge, [=] { gauge->setValue(read()); });
    };
    add("Processor", QColor(16, 62, 92), busyPercent);
    add("Memory", QColor(66, 34, 92), memoryPercent);
    add("Disk", QColor(20, 78, 58), diskPercent);
    VzCircularClock clock;
    layout.addWidget(&clock);
    QObject::connect(&second, &QTimer::timeout, &clock, [&] { clock.setTime(QDateTime::currentDateTime()); });
    second.start(1000);
    return run(window);
}
