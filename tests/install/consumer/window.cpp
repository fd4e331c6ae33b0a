#include <VzSpeedometer.h>

#include <QApplication>

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    VzSpeedometer speedometer;
    speedometer.setValue(87);
    speedometer.show();
    return speedometer.grab().save(QString::fromLocal8Bit(count > 1 ? arguments[1] : "speed.png")) ? 0 : 1;
}
