#include "archives/folded_text.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace tarnwick::archives {

namespace {

constexpr uint64_t Ones = 0x0101010101010101u;
constexpr uint64_t HighBits = 0x80 * Ones;
constexpr uint64_t LowBits = 0x7F * Ones;

/// Folds eight characters at once.
uint64_t FoldWord(uint64_t word) {
  const uint64_t low = word & LowBits;
  const uint64_t fromA = low + (0x80 - 'A') * Ones;        // the high bit of a byte is set from 'A' on
  const uint64_t behindZ = low + (0x80 - 'Z' - 1) * Ones;  // and here behind 'Z'
  word |= (fromA & ~behindZ & ~word & HighBits) >> 2;
  const uint64_t other = word ^ '\\' * Ones;
  const uint64_t backslash = ~(((other & LowBits) + LowBits) | other) & HighBits;
  return word ^ (backslash >> 7) * ('\\' ^ '/');
}

uint64_t WordAt(const char* text, size_t size) {
  uint64_t word = 0;
  if (size > 0) std::memcpy(&word, text, size);  // an empty text may have no place
  return FoldWord(word);
}

uint64_t Mix(uint64_t a, uint64_t b) {
  __extension__ typedef unsigned __int128 Wide;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

struct Secret {
  uint64_t First;
  uint64_t Second;
};

const Secret& RunSecret() {
  static const Secret secret = [] {
    std::random_device random;
    const auto draw = [&] { return (uint64_t{random()} << 32 | random()) | 1; };
    return Secret{draw(), draw()};
  }();
  return secret;
}

}  // namespace

std::string FoldedText(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) c = Folded(c);
  return folded;
}

int CompareFolded(std::string_view a, std::string_view b) {
  const size_t common = std::min(a.size(), b.size());
  for (size_t i = 0; i < common; ++i) {
    const auto left = static_cast<unsigned char>(Folded(a[i]));
    const auto right = static_cast<unsigned char>(Folded(b[i]));
    if (left != right) return left < right ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool EqualFolded(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  size_t place = 0;
  for (; place + 8 <= a.size(); place += 8) {
    if (WordAt(a.data() + place, 8) != WordAt(b.data() + place, 8)) return false;
  }
  return WordAt(a.data() + place, a.size() - place) == WordAt(b.data() + place, b.size() - place);
}

uint64_t HashFolded(std::string_view text, uint64_t before) {
  const Secret& secret = RunSecret();
  uint64_t hash = before ^ secret.First ^ text.size();
  size_t place = 0;
  for (; place + 8 <= text.size(); place += 8) hash = Mix(hash ^ WordAt(text.data() + place, 8), secret.Second);
  return Mix(hash ^ WordAt(text.data() + place, text.size() - place), secret.Second);
}

std::string PlainName(std::string_view name) {
  std::string plain;
  while (!name.empty()) {
    const size_t end = name.find_first_of("/\\");
    const std::string_view part = name.substr(0, end);
    if (!part.empty() && part != ".") {
      if (!plain.empty()) plain += '/';
      plain += part;
    }
    name.remove_prefix(end == std::string_view::npos ? name.size() : end + 1);
  }
  return plain;
}

}  // namespace tarnwick::archives
