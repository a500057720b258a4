#include <gmock/gmock.h>

#include <iostream>
#include <sstream>

#include "command_line.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using testing::HasSubstr;
using tests::ReadText;
using tests::RunCommand;
using tests::WriteText;

TEST(SmdVerb, ShowsFiguresAndReplaces) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.smd");
  WriteText(path, "nodes\n0 root -1\nend\ntriangles\nwood\nshort\n");
  auto result = RunCommand({"smd", "info", "--json", path});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_EQ(result.Out, R"({"file":")" + path + R"(","complete":false,"bones":1,"frames":0,"triangles":1,)" +
                            R"("materials":[{"name":"wood","faces":1}],"badLine":6})" + "\n");
  EXPECT_THAT(result.Err, HasSubstr("line 6"));
  const std::string sound = folder.Path("sound.smd");
  WriteText(sound, "version 1\nnodes\n0 root -1\nend\n");
  result = RunCommand({"smd", "info", "--json", sound});
  EXPECT_EQ(result.ExitCode, ExitSuccess);
  EXPECT_EQ(result.Out,
            R"({"file":")" + sound + R"(","complete":true,"bones":1,"frames":0,"triangles":0,"materials":[]})" + "\n");
  EXPECT_EQ(result.Err, "");
  result = RunCommand({"smd", "replace", path, "wood", "oak", "--yes"});
  EXPECT_EQ(result.Out, path + ": 1 replaced\n");
  EXPECT_THAT(ReadText(path), HasSubstr("\noak\n"));
}

TEST(SmdVerb, NamesEachFileOfSeveralAndThoseThatAreNotThere) {
  tests::ScratchFolder folder;
  const std::string a = folder.Path("a.smd"), gone = folder.Path("gone.smd"), b = folder.Path("b.smd");
  WriteText(a, "nodes\n0 root -1\nend\n");
  WriteText(b, "nodes\n0 root -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\n");
  EXPECT_EQ(RunCommand({"smd", "info", a}).Out, "Frames:\t0\nBones:\t1\nTriangles:\t0\n");
  const auto several = RunCommand({"smd", "info", gone, a, b});
  EXPECT_EQ(several.ExitCode, ExitFailure);
  EXPECT_EQ(several.Out,
            a + ":\nFrames:\t0\nBones:\t1\nTriangles:\t0\n" + b + ":\nFrames:\t1\nBones:\t1\nTriangles:\t0\n");
  EXPECT_THAT(several.Err, testing::StartsWith("Error: " + gone + ": "));
  EXPECT_THAT(RunCommand({"smd", "info", "--json", gone}).Out,
              testing::AllOf(HasSubstr("\"complete\":false"), HasSubstr("\"error\":\"")));
  const auto nothing = RunCommand({"smd", "replace", a, "", "oak", "--yes"});
  EXPECT_EQ(nothing.ExitCode, ExitUsage);
  EXPECT_EQ(nothing.Err, "SMD ERROR: No Old Material Specified\n");
}

TEST(SmdVerb, ReplacesInSeveralFilesThoughOneCannotBeRead) {
  tests::ScratchFolder folder;
  for (const char* name : {"a.smd", "c.smd"}) WriteText(folder.Path(name), "triangles\nwood\nwood\n");
  const auto result = RunCommand(
      {"smd", "replace", folder.Path("a.smd"), folder.Path("gone.smd"), folder.Path("c.smd"), "wood", "oak", "--yes"});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_EQ(result.Out, folder.Path("a.smd") + ": 2 replaced\n" + folder.Path("c.smd") + ": 2 replaced\n");
  EXPECT_THAT(result.Err, HasSubstr("gone.smd"));
  EXPECT_EQ(ReadText(folder.Path("c.smd")), "triangles\noak\noak\n");
}

/// What `smd replace` does with what the user answers to its question.
tests::CommandResult ReplaceWith(const std::string& path, const std::string& answer) {
  std::istringstream input(answer);
  std::streambuf* const console = std::cin.rdbuf(input.rdbuf());
  std::cin.clear();
  const auto result = RunCommand({"smd", "replace", path, "wood", "oak"});
  std::cin.rdbuf(console);
  std::cin.clear();
  return result;
}

TEST(SmdVerb, AsksBeforeItReplaces) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.smd");
  WriteText(path, "triangles\nwood\n");
  for (const char* answer : {"n\n", "\n", "", "maybe\n", "yn\n"}) {
    const auto result = ReplaceWith(path, answer);
    EXPECT_EQ(result.ExitCode, ExitFailure) << answer;
    EXPECT_EQ(result.Out, "");
    EXPECT_THAT(result.Err, testing::AllOf(testing::StartsWith("Replace \"wood\" with \"oak\" in "), HasSubstr(path),
                                           HasSubstr(" [y/N] "), HasSubstr("Nothing was changed\n")));
    EXPECT_EQ(ReadText(path), "triangles\nwood\n") << answer;
  }
  for (const char* answer : {"y\n", "Y\n", "yes\n", "y"}) {
    WriteText(path, "triangles\nwood\n");
    EXPECT_EQ(ReplaceWith(path, answer).ExitCode, ExitSuccess) << answer;
    EXPECT_EQ(ReadText(path), "triangles\noak\n") << answer;
  }
}

}  // namespace
}  // namespace tarnwick::cli
