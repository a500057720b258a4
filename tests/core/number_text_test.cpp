#include "core/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace tarnwick::core {
namespace {

/// Compares all three precisions of one bit pattern with printf; says the first that differs.
void ExpectAsPrintf(uint32_t bits) {
  const float value = std::bit_cast<float>(bits);
#ifdef _WIN32
  if (std::isnan(value)) return;  // the library there leaves the sign of some of them out
#endif
  char ours[LongestNumberText];
  char expected[LongestNumberText];
  const auto check = [&](char* end, const char* format) {
    const int length = std::snprintf(expected, sizeof expected, format, static_cast<double>(value));
    if (end - ours != length || std::memcmp(ours, expected, static_cast<size_t>(length)) != 0) {
      ADD_FAILURE() << format << " of bits " << bits << ": " << std::string(ours, end) << " instead of " << expected;
    }
  };
  check(WriteFixed<6>(ours, value), "%f");
  check(WriteFixed<6>(ours, value), "%2.6f");
  check(WriteFixed<3>(ours, value), "%2.3f");
  check(WriteFixed<2>(ours, value), "%2.2f");
}

TEST(NumberText, PrintsEveryClassOfFloatAsPrintfDoes) {
  // For every exponent, zero and denormals to infinity and not-a-number: mantissas at both ends, in the middle, and
  // of one bit, with both signs.
  for (uint32_t exponent = 0; exponent <= 0xFF; ++exponent) {
    for (const uint32_t sign : {0u, 1u}) {
      const uint32_t base = sign << 31 | exponent << 23;
      for (uint32_t bit = 0; bit < 23; ++bit) ExpectAsPrintf(base | 1u << bit);
      for (const uint32_t mantissa : {0x000000u, 0x000001u, 0x3FFFFFu, 0x400000u, 0x400001u, 0x7FFFFEu, 0x7FFFFFu}) {
        ExpectAsPrintf(base | mantissa);
      }
    }
  }
}

/// Compares the shortest text of one bit pattern with that of the standard library.
void ExpectShortest(uint32_t bits) {
  const float value = std::bit_cast<float>(bits);
  if (!std::isfinite(value)) return;
  char ours[LongestNumberText];
  char expected[LongestNumberText];
  const std::string_view got(ours, WriteShortestDecimal(ours, value));
  const auto end = std::to_chars(expected, expected + sizeof expected, value, std::chars_format::fixed).ptr;
  if (got != std::string_view(expected, end)) {
    ADD_FAILURE() << "bits " << bits << ": " << got << " instead of " << std::string(expected, end);
  }
}

TEST(NumberText, WritesTheShortestDecimalThatReadsAsTheSameFloat) {
  for (uint32_t edge = 0; edge <= 0xFF; ++edge) {  // zero, powers of two and their neighbours
    for (uint32_t step = 0; step <= 6; ++step) {
      ExpectShortest((edge << 23) + step - 3);
      ExpectShortest((edge << 23) + step - 3 + 0x80000000);
    }
  }
  for (const float tens : {1.0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F, 1e6F, 1e7F, 1e8F, 1e9F}) {  // as people type them
    for (int k = -20'000; k <= 20'000; ++k) ExpectShortest(std::bit_cast<uint32_t>(static_cast<float>(k) / tens));
  }
  std::mt19937 random(5);
  std::uniform_real_distribution<float> ordinary(-200.0f, 200.0f);
  for (int i = 0; i < 500'000 && !::testing::Test::HasFailure(); ++i) {
    ExpectShortest(static_cast<uint32_t>(random()));
    ExpectShortest(std::bit_cast<uint32_t>(ordinary(random)));
  }
  EXPECT_EQ(ShortestDecimal(1e-5F), "0.00001");
  EXPECT_EQ(ShortestDecimal(-0.0625F), "-0.0625");
}

TEST(NumberText, RoundsExactHalvesToEven) {
  // k / 128 has its last decimal in the seventh place, a 5: an exact half for six digits.
  for (int k = -2000; k <= 2000; ++k) ExpectAsPrintf(std::bit_cast<uint32_t>(static_cast<float>(k) / 128.0f));
  for (int k = -2000; k <= 2000; ++k) ExpectAsPrintf(std::bit_cast<uint32_t>(static_cast<float>(k) / 8.0f));
  for (int k = -2000; k <= 2000; ++k) ExpectAsPrintf(std::bit_cast<uint32_t>(static_cast<float>(k) / 16.0f));
}

TEST(NumberText, PrintsRandomBitPatternsAsPrintfDoes) {
  std::mt19937 random(20240607);
  for (int i = 0; i < 3'000'000 && !::testing::Test::HasFailure(); ++i) ExpectAsPrintf(static_cast<uint32_t>(random()));
  // Most random patterns are far from the sizes that models hold; these are not.
  std::uniform_real_distribution<float> ordinary(-200.0f, 200.0f);
  for (int i = 0; i < 1'000'000 && !::testing::Test::HasFailure(); ++i) {
    ExpectAsPrintf(std::bit_cast<uint32_t>(ordinary(random)));
  }
}

TEST(NumberText, PrintsIntegersAsPrintfDoes) {
  for (const int64_t value :
       {int64_t{0}, int64_t{7}, int64_t{-7}, int64_t{10}, int64_t{99}, int64_t{100}, int64_t{-999}, int64_t{1234},
        int64_t{65535}, int64_t{std::numeric_limits<int32_t>::max()}, int64_t{std::numeric_limits<int32_t>::min()},
        std::numeric_limits<int64_t>::min()}) {
    char ours[LongestNumberText];
    char expected[LongestNumberText];
    std::snprintf(expected, sizeof expected, "%lld", static_cast<long long>(value));
    EXPECT_EQ(std::string(ours, WriteInteger(ours, value)), expected);
    std::snprintf(expected, sizeof expected, "%3lld", static_cast<long long>(value));
    EXPECT_EQ(std::string(ours, WriteIntegerWide(ours, value, 3)), expected);
  }
}

}  // namespace
}  // namespace tarnwick::core
