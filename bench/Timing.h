#pragma once

#include <algorithm>
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

} // namespace Bench
