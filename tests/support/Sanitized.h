#pragma once

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

} // namespace Vz::Test
