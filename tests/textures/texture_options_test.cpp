#include "textures/texture_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::textures {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ParseTextureOptions, ReadsNamesAndValuesInQuotesOrNot) {
  std::vector<std::string> warnings;
  const auto options = ParseTextureOptions(
      "\xEF\xBB\xBF\"nocompress\" \"1\"\r\n"
      "\tClampS 1 // to the edge\r\n"
      "\r\n"
      "// nolod\n"
      "nomip\n"
      "trilinear 0\n"
      "reduce 4\n"
      "\"reducey\"\t\"2\"\n"
      "bumpscale 0.5\n"
      "startframe 0\n"
      "endframe 11",
      warnings);
  EXPECT_THAT(warnings, IsEmpty());
  EXPECT_TRUE(options.NoCompress && options.ClampS && options.NoMip);
  EXPECT_FALSE(options.NoLod || options.Trilinear || options.ClampT);
  EXPECT_EQ(options.ReduceX, 4);
  EXPECT_EQ(options.ReduceY, 2);
  EXPECT_EQ(options.BumpScale, 0.5f);
  EXPECT_EQ(options.StartFrame, 0);
  EXPECT_EQ(options.EndFrame, 11);
}

TEST(ParseTextureOptions, WarnsOfWhatItDoesNotUnderstandAndGoesOn) {
  std::vector<std::string> warnings;
  const auto options = ParseTextureOptions(
      "nocompres 1\nreduce 3\nbumpscale much\nclamps yes\nreduce 99999999999\nendframe -1\n\"\" 1\nnormal\n", warnings);
  EXPECT_THAT(warnings,
              ElementsAre("line 1: unknown option \"nocompres\"", "line 2: \"reduce\" takes a power of two",
                          "line 3: \"bumpscale\" takes a number", "line 4: \"clamps\" takes 0 or 1",
                          "line 5: \"reduce\" takes a power of two", "line 6: \"endframe\" takes a number from 0 on"));
  EXPECT_TRUE(options.Normal);
  EXPECT_EQ(options.ReduceX, 1);
}

}  // namespace
}  // namespace tarnwick::textures
