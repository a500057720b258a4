#include "process/command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::process {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Command, TheLineShowsEachArgumentAsItsBuilderSays) {
  Command built{"C:/my sdk/tool.exe"};
  built.Word("-game").InQuotes(R"(C:\my game\)").Word("-o").InQuotes(R"(a"b.tga)").Typed("$tint 1  \".5 .25\"");
  EXPECT_EQ(built.Line(), R"(C:/my sdk/tool.exe -game "C:\my game\" -o "a"b.tga" $tint 1  ".5 .25")");
  EXPECT_THAT(built.Arguments, ElementsAre("-game", R"(C:\my game\)", "-o", R"(a"b.tga)", "$tint", "1", ".5 .25"));
}

TEST(Command, TheLineOfPlainArgumentsQuotesThoseThatNeedIt) {
  Command command{"tool", {"-f", "a b", ""}};
  EXPECT_EQ(command.Line(), R"(tool -f "a b" "")");
  command.Word("x y");
  EXPECT_EQ(command.Line(), R"(tool -f "a b" "" x y)");
  EXPECT_EQ(Command{"tool"}.Line(), "tool");
}

TEST(Command, TheWindowsLineHoldsEachArgumentForTheRuntimeOfC) {
  const Command command{R"(C:\my sdk\tool.exe)", {"-f", R"(C:\my game\)", R"(a"b)", R"(\"\\)", "", R"(C:\x\)"}};
  EXPECT_EQ(WindowsLine(command), R"("C:\my sdk\tool.exe" -f "C:\my game\\" "a\"b" "\\\"\\\\" "" C:\x\)");
}

TEST(SplitWords, PartsATypedTextAtBlanksOutsideOfQuotes) {
  EXPECT_THAT(SplitWords(R"( 1 "C:\my game"  "" -f	-h )"), ElementsAre("1", R"(C:\my game)", "", "-f", "-h"));
  EXPECT_THAT(SplitWords(R"(a"b c"d "say ""hi""" "open end)"), ElementsAre("ab cd", R"(say "hi")", "open end"));
  EXPECT_THAT(SplitWords(R"("C:\game\" \\x\)"), ElementsAre(R"(C:\game\)", R"(\\x\)"));
  EXPECT_THAT(SplitWords("  "), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::process
