#include "hosts/qt/gallery/Motion.h"

#include "hosts/qt/VzWidget.h"
#include "tavro/runtime/PropAccess.h"

#include <QDateTime>
#include <QMetaProperty>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace {

using Vz::TQuantity;

/// A point of a curve: where in the range (0 to 1) at which second.
struct Stop {
    double second;
    double share;
};

// One round of each; the last second is the first of the next round.
constexpr Stop Drive[] = {{0, 0},     {1.5, 0.06}, {5, 0.24},  {7, 0.21},  {12, 0.5}, {15, 0.55},
                          {19, 0.78}, {23, 0.72},  {27, 0.54}, {30, 0.58}, {34, 0.3}, {36, 0.14},
                          {38, 0.21}, {42, 0.08},  {44, 0},    {46.5, 0}};
constexpr Stop Weather[] = {{0, 0.62}, {9, 0.68}, {20, 0.34}, {27, 0.2}, {33, 0.31}, {45, 0.74}, {55, 0.62}};
constexpr Stop Tank[] = {{0, 0.96}, {12, 0.71}, {20, 0.58}, {33, 0.22}, {40, 0.07}, {42, 0.06}, {46, 0.96}};
constexpr Stop Charge[] = {{0, 1}, {24, 0.12}, {26, 0.1}, {38, 0.94}, {42, 1}};
constexpr Stop Flight[] = {{0, 0}, {3, 0}, {25, 0.82}, {32, 0.85}, {40, 0.85}, {62, 0.04}, {66, 0}, {70, 0}};
constexpr Stop Day[] = {{0, 0.35}, {14, 0.22}, {30, 0.55}, {42, 0.78}, {48, 0.76}, {60, 0.35}};
constexpr Stop Wander[] = {{0, 0.1}, {8, 0.85}, {14, 0.55}, {22, 0.95}, {30, 0.05}, {34, 0.1}};

/// The curves of quantities that have one of their own.
constexpr struct {
    TQuantity quantity;
    std::span<const Stop> curve;
} Curves[] = {
    {TQuantity::Speed, Drive},   {TQuantity::Pressure, Weather}, {TQuantity::Supply, Tank},
    {TQuantity::Charge, Charge}, {TQuantity::Height, Flight},    {TQuantity::Temperature, Day},
};

constexpr double FlightCeiling = 36000; // feet; for a height without a range
constexpr double MinutesPerSecond = 24; // a day in a minute
constexpr double DaysPerSecond = 3;
constexpr double SecondsPerStep = 2;

std::span<const Stop> curveOf(TQuantity quantity) {
    for (const auto& row : Curves)
        if (row.quantity == quantity) return row.curve;
    return Wander;
}

/// The curve's share at a second, eased between its points.
double shareAt(std::span<const Stop> curve, double seconds) {
    const double moment = std::fmod(std::max(seconds, 0.0), curve.back().second);
    const auto next = std::find_if(curve.begin() + 1, curve.end() - 1,
                                   [&](const Stop& stop) { return moment < stop.second; });
    const Stop& from = *(next - 1);
    const double t = (moment - from.second) / (next->second - from.second);
    return std::lerp(from.share, next->share, t * t * (3 - 2 * t));
}

bool has(const VzWidget& widget, const char* name) { return widget.metaObject()->indexOfProperty(name) >= 0; }

qint64 stepAt(double seconds) { return qint64(std::max(seconds, 0.0) / SecondsPerStep); }

QVariant valueOfRange(const VzWidget& widget, TQuantity quantity, double seconds) {
    const double share = shareAt(curveOf(quantity), seconds);
    if (!has(widget, "maximum"))
        return quantity == TQuantity::Position ? double(stepAt(seconds) % 2) : FlightCeiling * share;
    const QVariant low = widget.property("minimum");
    const double value = std::lerp(low.toDouble(), widget.property("maximum").toDouble(), share);
    return low.userType() == QMetaType::Int ? std::round(value) : value; // a dial has whole positions
}

/// Hours and minutes run fast, the seconds' hand goes as it does on any clock.
QVariant timeOfDay(double seconds) {
    const QDateTime start(QDate(2026, 3, 15), QTime(10, 8, 0));
    return start.addSecs(qint64(seconds * MinutesPerSecond) * 60)
        .addMSecs(qint64(std::fmod(seconds, 60) * 1000));
}

QVariant day(double seconds) {
    return QDateTime(QDate(2026, 3, 15).addDays(qint64(seconds * DaysPerSecond)), QTime(12, 0));
}

QVariant heading(double seconds) {
    const double turn = 2 * std::numbers::pi * seconds;
    return std::fmod(360 + 40 + 55 * std::sin(turn / 17) + 80 * std::sin(turn / 41), 360);
}

/// One member after the other.
QVariant memberOf(const VzWidget& widget, const char* name, double seconds) {
    const QMetaObject& meta = *widget.metaObject();
    const QMetaEnum members = meta.property(meta.indexOfProperty(name)).enumerator();
    return members.keyCount() > 0 ? members.value(int(stepAt(seconds) % members.keyCount())) : 0;
}

QVariant valueAt(const VzWidget& widget, const char* name, TQuantity quantity, double seconds) {
    switch (quantity) {
    case TQuantity::TimeOfDay:
        return timeOfDay(seconds);
    case TQuantity::Date:
        return day(seconds);
    case TQuantity::Heading:
        return heading(seconds);
    case TQuantity::Switch:
        return stepAt(seconds) % 2 == 0;
    case TQuantity::Lamps:
        return memberOf(widget, name, seconds);
    default:
        return valueOfRange(widget, quantity, seconds);
    }
}

} // namespace

Motion motionOf(const VzWidget& widget) {
    const Vz::TProp* const row = Vz::FindMainProp(widget.component());
    const char* const name = widget.metaObject()->userProperty().name();
    if (!row || !name) return {};
    return {name, [&widget, name, quantity = row->Main](double seconds) {
                return valueAt(widget, name, quantity, seconds);
            }};
}
