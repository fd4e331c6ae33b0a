#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

class QWidget;

/// Counts the frames of a window and the time that goes into painting them.
class FrameMeter : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// Counts the frames of a window.
    void watch(QWidget& window);
    /// A frame took so many milliseconds.
    void addFrame(double ms);

    /// The figures since the last call, which begin anew; empty where there was no frame.
    QString takeText();
    double framesPerSecond() const { return seconds() > 0 ? count / seconds() : 0; }
    double msPerFrame() const { return count > 0 ? sumMs / count : 0; }
    void restart();

Q_SIGNALS:
    /// After a frame of the window.
    void painted();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    double seconds() const { return since.isValid() ? double(since.nsecsElapsed()) / 1e9 : 0; }

    QElapsedTimer since;
    int count = 0;
    double sumMs = 0;
    bool isPainting = false;
};
