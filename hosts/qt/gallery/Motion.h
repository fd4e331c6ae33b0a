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

/// The motion that suits the widget, found from its properties: a time of day runs through a day in a minute,
/// a value through its range, an angle turns, a switch is switched, a set goes through its members. Some
/// classes have a curve of their own, such as a drive for a speedometer. The motion is the same at the same
/// moment, whenever it is asked; the widget must outlive it.
Motion motionOf(const VzWidget& widget);
