// One instrument in a window. Its value is a Qt property, which an animation moves.

#include "../Run.h"

#include <QPropertyAnimation>
#include <VzSpeedometer.h>

int main(int count, char** arguments) {
    QApplication application(count, arguments);

    VzSpeedometer speedometer;
    speedometer.setWindowTitle("One widget");
    speedometer.resize(360, 360);
    speedometer.setDecoration(VzSpeedometer::dcCar);
    speedometer.setBackfaceColor(QColor(22, 52, 84));
    speedometer.setNeedleFillColor(QColor(255, 92, 40));
    QObject::connect(&speedometer, &VzSpeedometer::valueChanged, [&](double value) {
        speedometer.setDecorationFillColor(value > 130 ? QColor(255, 92, 40) : QColor(120, 200, 255));
    });

    QPropertyAnimation drive(&speedometer, "value");
    drive.setDuration(900);
    drive.setEndValue(148.0);
    drive.setEasingCurve(QEasingCurve::OutBack);
    drive.start();
    return run(speedometer);
}
