#include "hosts/qt/gallery/Stress.h"

#include "hosts/qt/gallery/FrameMeter.h"
#include "hosts/qt/gallery/Motion.h"
#include <VzSpeedometer.h>

#include <QApplication>
#include <QGridLayout>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

constexpr int Side = 200;
constexpr int WarmUpMs = 1000;
constexpr int MeasuredMs = 5000;

/// A window of gauges that sets every value anew as soon as the last frame is painted.
class StressWindow final : public QWidget {
public:
    explicit StressWindow(int count) {
        auto* const grid = new QGridLayout(this);
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setSpacing(0);
        const int columns = int(std::ceil(std::sqrt(count)));
        for (int i = 0; i < count; ++i) {
            auto* const gauge = new VzSpeedometer(this);
            gauge->setFixedSize(Side, Side);
            grid->addWidget(gauge, i / columns, i % columns);
            gauges.push_back(gauge);
            motions.push_back(motionOf(*gauge));
        }
        moment.start();
        painting.watch(*this);
        connect(&painting, &FrameMeter::painted, this, [this] { isPainted = true; });
        connect(&timer, &QTimer::timeout, this, [this] { step(); });
        timer.start(0);
    }

    void begin() {
        isPainted = true; // the first steps may have come before the window
        painting.restart();
        setting.restart();
        steps = 0;
        cpuAtStart = std::clock();
    }
    void print() const {
        const double fps = painting.framesPerSecond();
        std::printf("%zu gauges of %d x %d, %s: %.1f frames/s\n", gauges.size(), Side, Side,
                    qUtf8Printable(QApplication::platformName()), fps);
        std::printf("  a frame: setting values %.2f ms, painting %.2f ms, rest %.2f ms\n",
                    setting.msPerFrame(), painting.msPerFrame(),
                    1000 / fps - setting.msPerFrame() - painting.msPerFrame());
        // What other programs leave of the machine does not count here.
        const double cpuMs = 1000.0 * double(std::clock() - cpuAtStart) / CLOCKS_PER_SEC;
        std::printf("  processor time of a frame, of the whole program: %.2f ms\n",
                    cpuMs / std::max(steps, 1));
    }

private:
    void step() {
        if (!isPainted) return;
        isPainted = false;
        ++steps;
        QElapsedTimer watch;
        watch.start();
        const double seconds = double(moment.elapsed()) / 1000;
        for (size_t i = 0; i < gauges.size(); ++i)
            gauges[i]->setValue(motions[i].valueAt(seconds + 0.37 * double(i)).toDouble());
        setting.addFrame(double(watch.nsecsElapsed()) / 1e6);
    }

    std::vector<VzSpeedometer*> gauges;
    std::vector<Motion> motions;
    QElapsedTimer moment;
    QTimer timer;
    FrameMeter painting;
    FrameMeter setting;
    bool isPainted = true;
    int steps = 0;
    std::clock_t cpuAtStart = 0;
};

} // namespace

int runStress(int count) {
    StressWindow window(count);
    window.show();
    QTimer::singleShot(WarmUpMs, &window, [&] { window.begin(); });
    QTimer::singleShot(WarmUpMs + MeasuredMs, &window, [&] {
        window.print();
        QApplication::quit();
    });
    return QApplication::exec();
}
