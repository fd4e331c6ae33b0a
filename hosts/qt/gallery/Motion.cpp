#include "hosts/qt/gallery/Motion.h"

#include "hosts/qt/VzWidget.h"

#include <QDateTime>
#include <QMetaProperty>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace {

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
constexpr Stop Wander[] = {{0, 0.1}, {8, 0.85}, {14, 0.55}, {22, 0.95}, {30, 0.05}, {34, 0.1}};

/// The curves of single classes, by a word of the class's name.
constexpr struct {
    const char* word;
    std::span<const Stop> curve;
} Curves[] = {
    {"Speedometer", Drive}, {"Barometer", Weather}, {"FuelGauge", Tank},
    {"Battery", Charge},    {"Altimeter", Flight},  {"Thermometer", Weather},
};

constexpr double FlightCeiling = 36000; // feet; for a height without a range
constexpr double MinutesPerSecond = 24; // a day in a minute
constexpr double DaysPerSecond = 3;
constexpr double SecondsPerStep = 2;

std::span<const Stop> curveOf(const VzWidget& widget) {
    const QByteArray name = widget.metaObject()->className();
    for (const auto& row : Curves)
        if (name.contains(row.word)) return row.curve;
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

QVariant valueOfRange(const VzWidget& widget, double seconds) {
    const double share = shareAt(curveOf(widget), seconds);
    if (!has(widget, "maximum")) return FlightCeiling * share;
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

qint64 stepAt(double seconds) { return qint64(std::max(seconds, 0.0) / SecondsPerStep); }

/// One member after the other.
QVariant memberOf(const VzWidget& widget, const char* name, double seconds) {
    const QMetaObject& meta = *widget.metaObject();
    const QMetaEnum members = meta.property(meta.indexOfProperty(name)).enumerator();
    return members.keyCount() > 0 ? members.value(int(stepAt(seconds) % members.keyCount())) : 0;
}

/// What can be driven, the first that a widget has.
constexpr struct {
    const char* property;
    const char* beside; ///< another property that the widget must have, or null
    QVariant (*valueAt)(const VzWidget& widget, double seconds);
} Drives[] = {
    {"time", "dayOfYear", [](const VzWidget&, double s) { return day(s); }},
    {"time", nullptr, [](const VzWidget&, double s) { return timeOfDay(s); }},
    {"value", "maximum", valueOfRange},
    {"checked", nullptr, [](const VzWidget&, double s) { return QVariant(stepAt(s) % 2 == 0); }},
    {"lights", nullptr, [](const VzWidget& w, double s) { return memberOf(w, "lights", s); }},
    {"angle", nullptr, [](const VzWidget&, double s) { return heading(s); }},
    {"value", nullptr, valueOfRange},
};

} // namespace

Motion motionOf(const VzWidget& widget) {
    for (const auto& row : Drives)
        if (has(widget, row.property) && (!row.beside || has(widget, row.beside)))
            return {row.property,
                    [&widget, at = row.valueAt](double seconds) { return at(widget, seconds); }};
    return {};
}
