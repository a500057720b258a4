#include "tools/output_wrapping.h"

#include <gtest/gtest.h>

#include "tools/probe_run.h"
#include "tools/tool_run.h"

namespace tarnwick::tools {
namespace {

std::string Letters(size_t count) {
  return std::string(count, 'a');
}

std::string Wrapped(ToolRun run, const std::string& output) {
  return DisplayText("x", output, RuleOf(run)).substr(3);
}

TEST(OutputWrapping, BreaksALineBehindTheFirstBlankPastColumn80) {
  EXPECT_EQ(Wrapped(ToolRun::Vtex, Letters(80) + " " + Letters(3)), Letters(80) + " \r\n" + Letters(3));
  EXPECT_EQ(Wrapped(ToolRun::Vtex, Letters(79) + " " + Letters(3)), Letters(79) + " " + Letters(3));
  EXPECT_EQ(Wrapped(ToolRun::Vtex, Letters(200)), Letters(200));
  EXPECT_EQ(Wrapped(ToolRun::Vtex, "a\nb\0c"), "a\nb");
  EXPECT_EQ(DisplayText("tool -f", "", RuleOf(ToolRun::Vtex)), "tool -f\r\n");
}

TEST(OutputWrapping, CountsAcrossTheToolsLinesUnlessTheRunRestartsThere) {
  const std::string output = Letters(50) + "\r\n" + Letters(30) + " b c";
  EXPECT_EQ(Wrapped(ToolRun::Vtex, output), output);
  EXPECT_EQ(Wrapped(ToolRun::StudiomdlForm, output), Letters(50) + "\r\n" + Letters(30) + " \r\nb c");
  // A pair of line ends counts as one character, in the vtex run as the line's first.
  EXPECT_EQ(Wrapped(ToolRun::Vtex, "\r\n" + Letters(79) + " b"), "\r\n" + Letters(79) + " \r\nb");
  EXPECT_EQ(Wrapped(ToolRun::StudiomdlForm, "\r\n" + Letters(79) + " b"), "\r\n" + Letters(79) + " \r\nb");
  // The character behind a carriage return is swallowed whatever it is, and a blank there can break the line.
  EXPECT_EQ(Wrapped(ToolRun::StudiomdlForm, Letters(80) + "\r b"), Letters(80) + "\r\n\r\nb");
  EXPECT_EQ(Wrapped(ToolRun::Vtex, "a\r"), "a\r\n");
}

TEST(OutputWrapping, ShowsAsMuchAsTheRunAllows) {
  const struct {
    ToolRun Run;
    size_t Shown;
  } cases[] = {{ToolRun::StudiomdlForm, 65535},
               {ToolRun::StudiomdlExistingQc, 4095},
               {ToolRun::Vtex, 4095},
               {ToolRun::Vtf2tga, 2000}};
  for (const auto& c : cases) {
    size_t shown = 0;
    EXPECT_EQ(DisplayText("", Letters(70000), RuleOf(c.Run), &shown).size(), c.Shown + 2);
    EXPECT_EQ(shown, c.Shown);
  }
}

TEST(OutputWrapping, DoesNotDependOnWhereThePiecesEnd) {
  std::string output;
  for (int i = 0; i < 60; ++i) output += Letters(static_cast<size_t>(i * 7 % 50)) + (i % 3 == 0 ? "\r\n" : " ");
  for (const ToolRun run : {ToolRun::Vtex, ToolRun::StudiomdlForm}) {
    for (const size_t step : {1u, 2u, 3u, 7u}) {
      OutputWrapper wrapper(RuleOf(run));
      std::string text;
      for (size_t at = 0; at < output.size(); at += step) text += wrapper.Wrap(output.substr(at, step));
      EXPECT_EQ(text, Wrapped(run, output));
    }
  }
}

TEST(ToolRun, TellsBehindTheTextHowMuchMoreThereWas) {
  const process::Command command{CONSOLE_PROBE, {"fill", "5000"}};
  const FinishedRun run = RunTool(ToolRun::Vtf2tga, command, QuietOptions(), {"no game directory is set"});
  EXPECT_EQ(run.Text.size(), command.Line().size() + 2 + 2000);
  EXPECT_EQ(run.Notes,
            "\r\n[3000 more bytes of output are not shown here; \"Whole log\" has them]"
            "\r\nWarning: no game directory is set\r\n");
  EXPECT_EQ(run.Outcome.Log.Text().size(), 5000u);
  EXPECT_EQ(RunTool(ToolRun::Vtex, {CONSOLE_PROBE, {"fill", "4095"}}, QuietOptions()).Notes, "");
}

}  // namespace
}  // namespace tarnwick::tools
