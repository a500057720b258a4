#include "platform/text.h"

#include <gtest/gtest.h>

namespace tarnwick::platform {
namespace {

TEST(Text, ReadsWhatIsNoUtf8AsWindows1252) {
  EXPECT_EQ(FromQt(ToQt("C:\\M\xFCller\\\x80 \xC3\xBC \xEF\xBF\xBD \xE2\x82")), "C:\\Müller\\€ ü \xEF\xBF\xBD â‚");
  EXPECT_EQ(FromQt(ToQt("\xED\xA0\x80")), "í\xC2\xA0€");  // half of a surrogate pair
  EXPECT_EQ(FromQt(ToQt("ü\xF0\x9F\x98\x80")), "ü\xF0\x9F\x98\x80");
}

}  // namespace
}  // namespace tarnwick::platform
