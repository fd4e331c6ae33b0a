#pragma once

#include <QByteArray>
#include <QVariant>

#include <functional>

class VzWidget;

/// What makes one instrument move: the property that is driven, and its value at a moment.
struct Motion {
    QByteArray property;                             ///< empty for an instrument that stands still
    std::function<QVariant(double seconds)> valueAt; ///< seconds since the motion began
};

/// The motion that suits the widget's main value, from what that value tells: a time of day runs through a
/// day in a minute, a number through its range, along a drive for a speed, a heading turns, a switch is
/// switched, lamps are lit one after the other. The motion is the same at the same moment, whenever it is
/// asked; the widget must outlive it.
Motion motionOf(const VzWidget& widget);
