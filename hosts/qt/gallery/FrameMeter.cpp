#include "hosts/qt/gallery/FrameMeter.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

void FrameMeter::watch(QWidget& window) { window.installEventFilter(this); }

/// A window paints what became stale when it handles its update request.
bool FrameMeter::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::UpdateRequest || isPainting) return false;
    isPainting = true;
    QElapsedTimer painting;
    painting.start();
    QCoreApplication::sendEvent(object, event);
    addFrame(double(painting.nsecsElapsed()) / 1e6);
    isPainting = false;
    Q_EMIT painted();
    return true;
}

void FrameMeter::addFrame(double ms) {
    if (!since.isValid()) since.start();
    ++count;
    sumMs += ms;
}

QString FrameMeter::takeText() {
    if (count == 0) return {};
    const QString text =
        tr("%1 ms a frame \u00B7 %2 fps").arg(msPerFrame(), 0, 'f', 1).arg(framesPerSecond(), 0, 'f', 0);
    restart();
    return text;
}

void FrameMeter::restart() {
    since.start();
    count = 0;
    sumMs = 0;
}
