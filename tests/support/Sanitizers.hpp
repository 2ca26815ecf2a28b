#pragma once

// Whether the tests run under a sanitizer, where everything takes many times as long and memory is the sanitizer's
// own business.

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MODELS_ARE_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define MODELS_ARE_SANITIZED 1
#endif
#endif

namespace models {

#ifdef MODELS_ARE_SANITIZED
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

} // namespace models
