#include "core/image_view.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace tarnwick::core {
namespace {

#pragma pack(push, 1)
struct Pair {
  int16_t First;
  int8_t Second;
};
#pragma pack(pop)

constexpr int64_t Lowest = std::numeric_limits<int64_t>::min();
constexpr int64_t Highest = std::numeric_limits<int64_t>::max();

/// Ten bytes: 0 to 8, then 'x'.
class ImageViewTest : public testing::Test {
 protected:
  std::array<std::byte, 10> m_bytes = [] {
    std::array<std::byte, 10> bytes{};
    for (size_t i = 0; i < 9; ++i) bytes[i] = static_cast<std::byte>(i);
    bytes[9] = std::byte{'x'};
    return bytes;
  }();
  ImageView m_view{m_bytes};
};

TEST_F(ImageViewTest, GivesRecordsThatLieInside) {
  const auto pairs = m_view.Array<Pair>(1, 3);
  ASSERT_TRUE(pairs);
  EXPECT_EQ(pairs->Count(), 3);
  EXPECT_EQ(int16_t{(*pairs)[2]->First}, 0x0807);
  EXPECT_EQ((*pairs)[2].Offset(), 7);
  int64_t sum = 0;
  for (const auto pair : *pairs) sum += pair->Second;
  EXPECT_EQ(sum, 3 + 6 + 'x');
  EXPECT_EQ(m_view.Value<uint32_t>(6), 0x78080706u);
}

TEST_F(ImageViewTest, RefusesEveryRangeThatDoesNotFit) {
  EXPECT_TRUE(m_view.At<Pair>(7));
  EXPECT_FALSE(m_view.At<Pair>(8));
  EXPECT_FALSE(m_view.At<Pair>(-1));
  EXPECT_FALSE(m_view.Array<Pair>(1, 4));
  for (const int64_t offset : {Lowest, int64_t{-1}, int64_t{11}, Highest}) {
    EXPECT_FALSE(m_view.Array<Pair>(offset, 1)) << offset;
    EXPECT_FALSE(m_view.Value<float>(offset)) << offset;
    EXPECT_FALSE(m_view.Text(offset)) << offset;
    EXPECT_FALSE(m_view.Bytes(offset, 1)) << offset;
  }
  for (const int64_t count : {Lowest, int64_t{-1}, Highest, Highest / 3 + 1}) {
    EXPECT_FALSE(m_view.Array<Pair>(0, count)) << count;
    EXPECT_FALSE(m_view.Bytes(5, count)) << count;
  }
  // Nothing is read from an empty array, wherever it is said to be.
  EXPECT_TRUE(m_view.Array<Pair>(Highest, 0));
}

TEST_F(ImageViewTest, ATextEndsInsideTheImage) {
  EXPECT_EQ(m_view.Text(0), "");
  EXPECT_FALSE(m_view.Text(1));
  EXPECT_FALSE(m_view.Text(10));
  const char fixed[4] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(FixedText(fixed), "abcd");
}

}  // namespace
}  // namespace tarnwick::core
