#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <vector>

namespace Bench {

/// Microseconds of a clock that only runs forward.
inline double Now() {
    using namespace std::chrono;
    return duration<double, std::micro>(steady_clock::now().time_since_epoch()).count();
}

inline double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

/// Microseconds that one call takes.
template <class F> double Timed(F call) {
    const double begin = Now();
    call();
    return Now() - begin;
}

constexpr int FramesPerSweep = 54;

/// Microseconds, by frame of the sweep and by round: what else runs on the machine then spoils a few of them
/// only.
class TTimes {
public:
    template <class TAction> void Sweep(TAction&& action) {
        for (int frame = 0; frame < FramesPerSweep; ++frame) {
            const double start = Now();
            action(frame);
            FTimes[std::size_t(frame)].push_back(Now() - start);
        }
    }
    /// The mean over the frames of the rounds' quantile: 0.5 is their median.
    double At(double quantile) const {
        double sum = 0;
        for (std::vector<double> times : FTimes) {
            const auto place = times.begin() + std::ptrdiff_t(double(times.size() - 1) * quantile);
            std::nth_element(times.begin(), place, times.end());
            sum += *place;
        }
        return sum / FramesPerSweep;
    }

private:
    std::array<std::vector<double>, FramesPerSweep> FTimes;
};

} // namespace Bench
