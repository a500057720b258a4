#include "core/number_parse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "core/number_text.h"

namespace tarnwick::core {
namespace {

TEST(NumberParse, ReadsRealNumbersAsTheCLibraryDoes) {
  for (const std::string text :
       {"",         "1.5",        "  -2.25 x",  "+3",         "+-3",       "-",        ".5",       "5.",
        "1e3",      "1e",         "1e+",        "abc",        "0x1F",      "0x",       "0x1.8p1",  "-0",
        "inf",      "-Infinity",  "1e400",      "-1e400",     "1e-400",    "4.9e-324", "1,5",      "12abc",
        "\t\n7",    "0x-1",       "e5",         "--1",        "0xg",       "1e99999",  "1e-99999", "0.1e-99999",
        "0.1e9999", "000.1e9999", "1000e-9999", "0x0.1p9999", "0x1p-9999", "0xnan",    "0xinf",    "0x3p+-1"}) {
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    size_t length = 99;
    const double value = ParseReal(text, &length);
    EXPECT_EQ(value, expected) << text;
    // What is no number is zero; libraries differ in its sign.
    EXPECT_TRUE(end == text.c_str() || std::signbit(value) == std::signbit(expected)) << text;
    EXPECT_EQ(length, static_cast<size_t>(end - text.c_str())) << text;
  }
  EXPECT_TRUE(std::isnan(ParseReal("nan")));
}

TEST(NumberParse, ReadsWholeNumbersAndStopsAtTheLimits) {
  const auto expect = [](const char* text, int32_t value, size_t length) {
    size_t read = 99;
    EXPECT_EQ(ParseWhole(text, &read), value) << text;
    EXPECT_EQ(read, length) << text;
  };
  expect("", 0, 0);
  expect("x1", 0, 0);
  expect("-", 0, 0);
  expect(" 12x", 12, 3);
  expect("-2147483648", -2147483647 - 1, 11);
  expect("2147483648", 2147483647, 10);
  expect("-99999999999999999999999", -2147483647 - 1, 24);
}

TEST(NumberParse, GivesBackWhatWasPrinted) {
  EXPECT_EQ(FixedText(-1.005, 3), "-1.005");
  EXPECT_EQ(FixedText(0.125, 2), "0.12");  // halves that are exact go to the even digit
  EXPECT_EQ(FixedText(1e300, 0).size(), 301u);
  EXPECT_EQ(ParseReal(FixedText(30.25, 2)), 30.25);
}

}  // namespace
}  // namespace tarnwick::core
