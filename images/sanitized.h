#pragma once

/// 1 in a build under the address sanitizer, which keeps terabytes of address space for itself and needs calls of the
/// system that ordinary code does not.
#if defined(__SANITIZE_ADDRESS__)
#define TARNWICK_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARNWICK_ADDRESS_SANITIZER 1
#endif
#endif
#ifndef TARNWICK_ADDRESS_SANITIZER
#define TARNWICK_ADDRESS_SANITIZER 0
#endif
