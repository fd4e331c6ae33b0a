#include "hosts/qt/gallery/FrameMeter.h"

#include <QObject>

void FrameMeter::addFrame(double paintMs) {
    if (!since.isValid()) since.start();
    ++count;
    sumMs += paintMs;
}

QString FrameMeter::takeText() {
    if (count == 0 || !since.isValid()) return {};
    const QString text = QObject::tr("%1 ms a frame \u00B7 %2 fps")
                             .arg(msPerFrame(), 0, 'f', 1)
                             .arg(framesPerSecond(), 0, 'f', 0);
    restart();
    return text;
}

void FrameMeter::restart() {
    since.start();
    count = 0;
    sumMs = 0;
}
