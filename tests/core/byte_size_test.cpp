#include "core/byte_size.h"

#include <gtest/gtest.h>

namespace tarnwick::core {

namespace {

TEST(FormatByteSize, CutsOffBehindThreeDigits) {
  EXPECT_EQ(FormatByteSize(0), "0 bytes");
  EXPECT_EQ(FormatByteSize(1023), "1023 bytes");
  EXPECT_EQ(FormatByteSize(1024), "1.00 KB");
  EXPECT_EQ(FormatByteSize(1340), "1.30 KB");
  EXPECT_EQ(FormatByteSize(23506), "22.9 KB");
  EXPECT_EQ(FormatByteSize(131071), "127 KB");
  EXPECT_EQ(FormatByteSize(1000 * 1024), "0.97 MB");
  EXPECT_EQ(FormatByteSize(2400016), "2.28 MB");
  EXPECT_EQ(FormatByteSize(uint64_t{5} << 60), "5.00 EB");
}

}  // namespace

}  // namespace tarnwick::core
