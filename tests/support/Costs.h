#pragma once

#include <sys/resource.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAVRO_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define TAVRO_SANITIZED 1
#endif
#endif

namespace Vz::Test {

#ifdef TAVRO_SANITIZED
constexpr bool IsSanitized = true;
#else
constexpr bool IsSanitized = false;
#endif

/// What a limit of time is multiplied by: 1 for optimised code, 20 for other code, 30 under a sanitizer.
#ifdef NDEBUG
constexpr double Slowness = IsSanitized ? 30 : 1;
#else
constexpr double Slowness = IsSanitized ? 30 : 20;
#endif

/// Seconds of processor time that this process has used so far. Other programs on the machine do not count.
inline double ProcessorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) * 1e-6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace Vz::Test
