#include "core/text_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick::core {
namespace {

TEST(TextWriter, FormatsAsPrintfDoes) {
  std::string text;
  TextWriter writer(text);
  writer.Format("%% %d|%3d|%s|%f|%2.3f|%2.2f|%8.3f|%.1f\n", -7, 42, "a%sb", 1.0f, -0.0005f, 2.125f, 0.5, 1e300);
  writer.Flush();
  char expected[600];
  std::snprintf(expected, sizeof expected, "%% %d|%3d|%s|%f|%2.3f|%2.2f|%8.3f|%.1f\n", -7, 42, "a%sb", 1.0,
                static_cast<double>(-0.0005f), 2.125, 0.5, 1e300);
  EXPECT_EQ(text.substr(0, text.size() - PlatformLineEnd.size()) + "\n", expected);
}

TEST(TextWriter, KeepsEveryByteAcrossItsBuffer) {
  std::string text;
  std::string expected;
  {
    TextWriter writer(text);
    const std::string chunk(777, 'x');
    for (int i = 0; i < 500; ++i) {
      writer.Format("%3d", i);
      writer.Raw(chunk);
      writer.Format("%.2f", static_cast<double>(i));
      char number[900];
      const int length = std::snprintf(number, sizeof number, "%3d%s%.2f", i, chunk.c_str(), static_cast<double>(i));
      expected.append(number, static_cast<size_t>(length));
      ASSERT_EQ(writer.BytesWritten(), expected.size());
    }
  }
  EXPECT_EQ(text, expected);
}

TEST(TextWriter, WritesAFileInWholePagesUpToItsEnd) {
  struct Kept : OutputTarget {
    explicit Kept(std::vector<std::string>& pieces) : Pieces(pieces) {}
    bool Write(std::string_view bytes, std::string&) override {
      Pieces.emplace_back(bytes);
      return true;
    }
    bool Commit(std::string&) override { return true; }
    std::vector<std::string>& Pieces;
  };
  std::vector<std::string> pieces;
  std::string expected;
  {
    OutputFile file("a", std::make_unique<Kept>(pieces));
    TextWriter writer(file);
    for (int i = 0; i < 30'000; ++i) {
      writer.Integer(i);
      expected += std::to_string(i);
      if (i % 100 != 0) continue;
      const std::string more(static_cast<size_t>(i % 701), 'x');
      writer.Raw(more);
      expected += more;
    }
  }
  ASSERT_GT(pieces.size(), 2U);
  std::string whole;
  for (const std::string& piece : pieces) {
    EXPECT_EQ(whole.size() % 4096, 0U);
    whole += piece;
  }
  EXPECT_EQ(whole, expected);
}

TEST(TextWriter, CountsWhatIsNotFinite) {
  std::string text;
  TextWriter writer(text);
  const float infinity = std::numeric_limits<float>::infinity();
  writer.Float6(infinity);
  writer.Float6(-infinity);
  writer.Format(" %f %f %f", std::nanf(""), 1.0f, static_cast<double>(infinity));
  writer.CountNonFinite(2);
  writer.Flush();
  EXPECT_EQ(text, "inf-inf nan 1.000000 inf");
  EXPECT_EQ(writer.NonFiniteCount(), 6u);
}

}  // namespace
}  // namespace tarnwick::core
