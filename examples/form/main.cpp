// A form that was drawn in Qt Designer. The slider moves the instruments; the clock has the time of day.

#include "../Run.h"
#include "ui_panel.h"

int main(int count, char** arguments) {
    QApplication application(count, arguments);

    QWidget window;
    Ui::Panel panel;
    panel.setupUi(&window);
    panel.clock->setTime(QDateTime::currentDateTime());

    const auto accelerate = [&](int speed) {
        panel.speedometer->setValue(speed);
        panel.fuel->setValue(panel.fuel->maximum() * (1 - speed / 400.0));
    };
    QObject::connect(panel.slider, &QSlider::valueChanged, &window, accelerate);
    accelerate(panel.slider->value());
    return run(window);
}
