#pragma once

#include <cstring>
#include <span>
#include <type_traits>

namespace tarnwick::core {

/// Whether two values hold the same bytes: not-a-numbers with the same bits are equal then, 0 and -0 are not. `T` must
/// have no bytes between its members, since those would be compared too.
template <typename T>
requires std::is_trivially_copyable_v<T>
[[nodiscard]] bool HasSameBytes(const T& a, const T& b) {
  return std::memcmp(std::as_bytes(std::span(&a, 1)).data(), std::as_bytes(std::span(&b, 1)).data(), sizeof(T)) == 0;
}

}  // namespace tarnwick::core
