#include "tools/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::tools {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(CommandLine, PartsArgumentsAtBlanksOutsideOfQuotes) {
  EXPECT_THAT(SplitArguments(R"( -game "C:\my game"  "" -f	-h )"),
              ElementsAre("-game", R"(C:\my game)", "", "-f", "-h"));
  EXPECT_THAT(SplitArguments(R"(a"b c"d "say ""hi""" "open end)"), ElementsAre("ab cd", R"(say "hi")", "open end"));
  EXPECT_THAT(SplitArguments("  "), IsEmpty());
}

TEST(CommandLine, ABackslashBeforeTheClosingQuoteStaysAndTheQuoteCloses) {
  EXPECT_THAT(SplitArguments(R"(-game "C:\game\" "C:\qc\box.qc" \\x\)"),
              ElementsAre("-game", R"(C:\game\)", R"(C:\qc\box.qc)", R"(\\x\)"));
}

TEST(CommandLine, EachBlankMayEndAProgramNameWithoutQuotes) {
  std::vector<std::string> programs;
  for (const auto& reading : ProgramReadings("C:/my  sdk/vtex.exe -nopause")) {
    programs.push_back(reading.Program + "|" + reading.Arguments);
  }
  EXPECT_THAT(programs, ElementsAre("C:/my|  sdk/vtex.exe -nopause", "C:/my  sdk/vtex.exe| -nopause",
                                    "C:/my  sdk/vtex.exe -nopause|"));
  const auto quoted = ProgramReadings(R"("C:/my sdk/vtex.exe" -nopause)");
  ASSERT_EQ(quoted.size(), 1u);
  EXPECT_EQ(quoted[0].Program, "C:/my sdk/vtex.exe");
  EXPECT_EQ(quoted[0].Arguments, " -nopause");
  EXPECT_THAT(ProgramReadings(" "), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::tools
