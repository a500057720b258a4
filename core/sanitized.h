#pragma once

/// 1 in a build under the address or the thread sanitizer. Both keep terabytes of address space for themselves and
/// need calls of the system that ordinary code does not.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TARNWICK_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TARNWICK_SANITIZED 1
#endif
#endif
#ifndef TARNWICK_SANITIZED
#define TARNWICK_SANITIZED 0
#endif
