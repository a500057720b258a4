#include "sdk/vtex_arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::sdk {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::optional<VtexRequest> Read(const std::vector<std::string>& arguments) {
  std::string reason;
  return ReadVtexArguments(arguments, reason);
}

TEST(ReadVtexArguments, TellsValuesOfParametersFromInputs) {
  const auto request = Read({"-nopause",
                             "-shader",
                             "VertexLitGeneric",
                             "-vmtparam",
                             "$bumpmap",
                             "models\\p/brick_n",
                             "-vmtparam",
                             "$model",
                             "1",
                             "-vmtparam",
                             "$envmap",
                             "env_cubemap",
                             "-vmtparam",
                             "$envmapcontrast",
                             ".5",
                             "-vmtparam",
                             "$envmaptint",
                             ".5",
                             "-.25",
                             "1e-1",
                             "a b.tga",
                             "2.tga"});
  ASSERT_TRUE(request);
  EXPECT_EQ(request->Shader, "VertexLitGeneric");
  EXPECT_THAT(request->Parameters,
              ElementsAre(Pair("$bumpmap", "models\\p/brick_n"), Pair("$model", "1"), Pair("$envmap", "env_cubemap"),
                          Pair("$envmapcontrast", ".5"), Pair("$envmaptint", "[.5 -.25 1e-1]")));
  EXPECT_THAT(request->Inputs, ElementsAre("a b.tga", "2.tga"));
}

TEST(ReadVtexArguments, TakesAVectorInEachForm) {
  const auto value = [](std::vector<std::string> words) {
    words.insert(words.begin(), {"-vmtparam", "$envmaptint"});
    words.push_back("x.tga");
    const auto request = Read(words);
    return request ? request->Parameters[0].second : "refused";
  };
  EXPECT_EQ(value({"[.5", ".5", ".5]"}), "[.5 .5 .5]");
  EXPECT_EQ(value({"{255", "0", "0}"}), "{255 0 0}");
  EXPECT_EQ(value({"0.5 0.5 0.5"}), "[0.5 0.5 0.5]");
  EXPECT_EQ(value({"[1 1 1]"}), "[1 1 1]");
  EXPECT_EQ(value({"two words"}), "two words");
  EXPECT_EQ(value({""}), "");
}

TEST(ReadVtexArguments, RefusesWhatItCannotDo) {
  EXPECT_FALSE(Read({}));
  EXPECT_FALSE(Read({"-nopause"}));
  EXPECT_FALSE(Read({"x.tga", "-vmtparam", "$model"}));
  EXPECT_FALSE(Read({"x.tga", "-shader"}));
  EXPECT_FALSE(Read({"x.tga", "-shadre", "A"}));
  EXPECT_FALSE(Read({"x.tga", "-vmtparam", "$a", "b\"\n}"}));
  EXPECT_FALSE(Read({"x.tga", "-vmtparam", "$envmaptint", "[.5", ".5"}));
}

}  // namespace
}  // namespace tarnwick::sdk
