#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace tarnwick::fuzz {

/// The values that the bytes of an input make up; what is left at the end does not count.
template <typename T>
std::vector<T> ValuesOf(const uint8_t* data, size_t size) {
  std::vector<T> values(size / sizeof(T));
  if (!values.empty()) std::memcpy(values.data(), data, values.size() * sizeof(T));
  return values;
}

}  // namespace tarnwick::fuzz
