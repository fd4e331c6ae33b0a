#pragma once

#include <QElapsedTimer>
#include <QString>

/// Counts frames and the time that goes into painting them.
class FrameMeter {
public:
    /// A frame was painted in so many milliseconds.
    void addFrame(double paintMs);
    /// The figures since the last call, which begin anew; empty where no frame was painted.
    QString takeText();

    double framesPerSecond() const { return seconds() > 0 ? count / seconds() : 0; }
    double msPerFrame() const { return count > 0 ? sumMs / count : 0; }
    void restart();

private:
    double seconds() const { return double(since.nsecsElapsed()) / 1e9; }

    QElapsedTimer since;
    int count = 0;
    double sumMs = 0;
};
