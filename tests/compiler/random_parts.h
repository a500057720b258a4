#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace tarnwick::tests {

// What the parts of random sources are made with.

/// A generator of its own: the library's distributions differ from system to system.
class Dice {
 public:
  explicit Dice(uint32_t seed) : m_state(seed * 2654435761U + 12345) {}

  int Below(int count) {
    m_state ^= m_state << 13;
    m_state ^= m_state >> 7;
    m_state ^= m_state << 17;
    return static_cast<int>((m_state >> 11) % static_cast<uint64_t>(count));
  }
  int From(int least, int most) { return least + Below(most - least + 1); }
  bool Chance(int percent) { return Below(100) < percent; }
  std::string Any(const std::vector<std::string>& of) {
    return of[static_cast<size_t>(Below(static_cast<int>(of.size())))];
  }
  double Real(double least, double most) { return least + (most - least) * Below(1'000'001) / 1e6; }

 private:
  uint64_t m_state;
};

inline std::string Number(double value) {
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%.6f", value);
  return text.data();
}
template <typename... Values>
std::string Numbers(Values... values) {
  std::string text;
  ((text += " " + Number(values)), ...);
  return text;
}
inline std::string Number(int value) {
  return std::to_string(value);
}

struct RandomBone {
  std::string Name;
  int Parent = -1;
  std::array<double, 6> Rest = {};
};

struct RandomVertex {
  std::string Line;
  std::array<double, 6> Place = {};  // position, normal
};

}  // namespace tarnwick::tests
