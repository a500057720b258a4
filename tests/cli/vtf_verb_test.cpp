#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "command_line.h"
#include "images/test_image.h"
#include "process/run.h"

namespace tarnwick::tests {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A texture of version 7.2 in RGB888 without smaller levels, each frame 4 by 2 pixels of one colour.
std::string PlainTexture(const std::vector<Rgba>& frames) {
  std::string bytes(80, '\0');
  const auto put = [&](size_t at, int value) {
    bytes[at] = static_cast<char>(value);
    bytes[at + 1] = static_cast<char>(value >> 8);
  };
  bytes.replace(0, 3, "VTF");
  put(4, 7);
  put(8, 2);
  put(12, 80);
  put(16, 4);
  put(18, 2);
  put(24, static_cast<int>(frames.size()));
  put(52, 2);
  put(56, 1);
  for (size_t at = 57; at < 61; ++at) bytes[at] = '\xFF';
  put(63, 1);
  for (const Rgba& colour : frames) {
    for (int pixel = 0; pixel < 8; ++pixel) {
      for (const uint8_t channel : {colour.Red, colour.Green, colour.Blue}) bytes += static_cast<char>(channel);
    }
  }
  return bytes;
}

class VtfVerbTest : public testing::Test {
 protected:
  ScratchFolder Folder;
};

TEST_F(VtfVerbTest, WritesEveryFrameInTheFormatOfTheName) {
  WriteText(Folder.Path("a b.vtf"), PlainTexture({{250, 20, 30}, {1, 2, 240}}));
  for (const char* name : {"new/x.y.png", "new/x.y.tga"}) {
    SCOPED_TRACE(name);
    const auto result = RunCommand({"vtf", "-o", Folder.Path(name), Folder.Path("a b.vtf")});
    EXPECT_EQ(result.ExitCode, 0) << result.Err;
    std::string second = Folder.Path(name);
    second.insert(second.size() - 4, "001");
    EXPECT_EQ(WithSlashes(result.Out), Folder.Path(name) + "\n" + second + "\n");
    const TestImage first = ReadImage(Folder.Path(name));
    EXPECT_EQ(first.Width, 4);
    EXPECT_EQ(first.Height, 2);
    EXPECT_EQ(first.At(3, 1), (Rgba{250, 20, 30}));
    EXPECT_EQ(ReadImage(second).At(0, 0), (Rgba{1, 2, 240}));
  }
  EXPECT_THAT(Folder.Files(), ElementsAre("a b.vtf", "new/x.y.png", "new/x.y.tga", "new/x.y001.png", "new/x.y001.tga"));
}

TEST_F(VtfVerbTest, TellsWhatTheToolSaysOnlyWhereThatIsWanted) {
  WriteText(Folder.Path("a.vtf"), PlainTexture({{250, 20, 30}}));
  const auto run = [&](const std::vector<std::string>& options) {
    std::vector<std::string> words{"vtf", "-o", Folder.Path("a.tga"), Folder.Path("a.vtf")};
    words.insert(words.end(), options.begin(), options.end());
    return RunCommand(words);
  };
  EXPECT_THAT(run({}).Err, AllOf(testing::Not(HasSubstr("-nopause")), HasSubstr("1 texture, 1 file, ")));
  EXPECT_THAT(run({"-v"}).Err, AllOf(HasSubstr("vtf2tga.exe -nopause"), HasSubstr("a.tga: 4 x 2")));
  const auto quiet = run({"-q"});
  EXPECT_EQ(quiet.Out + quiet.Err, "");
}

TEST_F(VtfVerbTest, WhoReadsItsJsonOrThatOfMaterialGetsNothingElse) {
  WriteText(Folder.Path("a.vtf"), PlainTexture({{250, 20, 30}}));
  WriteText(Folder.Path("game/gameinfo.txt"), "");
  const auto run = [](std::vector<std::string> words) {
    words.insert(words.end(), {"-q", "--json"});
    return process::RunAndKeep({tests::ProgramFile(), words}, {}, {}).Output;
  };
  for (const std::string& output :
       {run({"vtf", "-o", Folder.Path("a.tga"), Folder.Path("a.vtf")}),
        run({"material", "--game", Folder.Path("game"), "-d", "props", Folder.Path("a.tga")})}) {
    EXPECT_EQ(nlohmann::json::parse(output, nullptr, false).value("outcome", ""), "ok") << output;
  }
}

TEST_F(VtfVerbTest, KeepsTheTgaFilesOnlyWhereThatIsWanted) {
  WriteText(Folder.Path("a.vtf"), PlainTexture({{250, 20, 30}}));
  EXPECT_EQ(RunCommand({"vtf", "-o", Folder.Path("b.dds"), Folder.Path("a.vtf")}).ExitCode, 0);
  EXPECT_THAT(Folder.Files(), ElementsAre("a.vtf", "b.dds"));
  EXPECT_EQ(RunCommand({"vtf", "--keep-tga", "-o", Folder.Path("b.png"), Folder.Path("a.vtf")}).ExitCode, 0);
  EXPECT_THAT(Folder.Files(), ElementsAre("a.vtf", "b.dds", "b.png", "b.tga"));
}

TEST_F(VtfVerbTest, GoesOnPastATextureThatIsDamaged) {
  WriteText(Folder.Path("in/red.vtf"), PlainTexture({{255, 0, 0}}));
  WriteText(Folder.Path("in/sub/red.VTF"), PlainTexture({{128, 0, 0}}));
  WriteText(Folder.Path("in/sub/bad.vtf"), PlainTexture({{0, 0, 0}}).substr(0, 90));
  WriteText(Folder.Path("out/sub/bad.bmp"), "an older image");
  const auto result =
      RunCommand({"vtf", "-o", Folder.Path("out"), "-f", "bmp", "-j", "2", "-r", "--json", Folder.Path("in")});
  EXPECT_EQ(result.ExitCode, 1);
  EXPECT_THAT(WithSlashes(result.Err), HasSubstr("in/sub/bad.vtf: vtf2tga: Error: "));
  EXPECT_EQ(ReadText(Folder.Path("out/sub/bad.bmp")), "an older image");
  EXPECT_EQ(ReadImage(Folder.Path("out/red.bmp")).At(0, 0).Red, 255);
  EXPECT_EQ(ReadImage(Folder.Path("out/sub/red.bmp")).At(0, 0).Red, 128);
  EXPECT_THAT(Folder.Files(), ElementsAre("in/red.vtf", "in/sub/bad.vtf", "in/sub/red.VTF", "out/red.bmp",
                                          "out/sub/bad.bmp", "out/sub/red.bmp"));
  std::istringstream lines(result.Out);
  std::map<std::string, nlohmann::json> told;
  for (std::string line; std::getline(lines, line);) {
    auto json = nlohmann::json::parse(line);
    EXPECT_GT(json["seconds"], 0);
    json.erase("seconds");
    told[WithSlashes(json["input"])] = json;
  }
  ASSERT_EQ(told.size(), 3u);
  const std::string bad = Folder.Path("in/sub/bad.vtf");
  ASSERT_EQ(told[Folder.Path("in/red.vtf")]["files"].size(), 1u);
  EXPECT_EQ(WithSlashes(told[Folder.Path("in/red.vtf")]["files"][0]), Folder.Path("out/red.bmp"));
  EXPECT_EQ(told[Folder.Path("in/red.vtf")]["outcome"], "ok");
  EXPECT_EQ(told[bad]["outcome"], "failed");
  EXPECT_EQ(told[bad]["files"], nlohmann::json::array());
  EXPECT_EQ(told[bad]["warnings"], nlohmann::json::array());
  EXPECT_EQ(told[bad]["errors"].size(), 1u);
}

TEST_F(VtfVerbTest, RefusesAFormatThatCannotBeWrittenBeforeItStarts) {
  WriteText(Folder.Path("a.vtf"), PlainTexture({{255, 0, 0}}));
  const auto result = RunCommand({"vtf", "-o", Folder.Path("new/a.vmt"), Folder.Path("a.vtf")});
  EXPECT_EQ(result.ExitCode, 2);
  EXPECT_THAT(result.Err, HasSubstr("images cannot be written as .vmt; choose one of bmp "));
  EXPECT_EQ(RunCommand({"vtf"}).ExitCode, 2);
  EXPECT_EQ(RunCommand({"vtf", "-j", "0", Folder.Path("a.vtf")}).ExitCode, 2);
  EXPECT_EQ(RunCommand({"vtf", "-j", "1", "-o", Folder.Path("x"), Folder.Path()}).ExitCode, 0);
  EXPECT_THAT(Folder.Files(), ElementsAre("a.vtf", "x/a.tga"));
}

TEST_F(VtfVerbTest, ListsTheFormatsThatItWrites) {
  const auto result = RunCommand({"vtf", "--list-formats"});
  EXPECT_EQ(result.ExitCode, 0);
  EXPECT_THAT("\n" + result.Out, AllOf(HasSubstr("\nbmp\n"), HasSubstr("\npng\n"), HasSubstr("\ntga\n")));
  EXPECT_THAT(result.Out, testing::Not(HasSubstr("pcx"))) << "which can be read alone";
  EXPECT_EQ(result.Err, "");
}

TEST_F(VtfVerbTest, TellsWhatATextureHolds) {
  WriteText(Folder.Path("a.vtf"), PlainTexture({{255, 0, 0}, {0, 0, 0}}));
  auto result = RunCommand({"vtf", "info", Folder.Path("a.vtf")});
  EXPECT_EQ(result.ExitCode, 0) << result.Err;
  EXPECT_THAT(result.Out, HasSubstr("version: 7.2\nwidth: 4\nheight: 2\n"));
  // Whoever reads the program's output gets nothing else.
  const process::CapturedRun run =
      process::RunAndKeep({tests::ProgramFile(), {"vtf", "info", Folder.Path("a.vtf")}}, {}, {});
  EXPECT_EQ(WithLineFeeds(run.Output), result.Out);
  result = RunCommand({"vtf", "info", "--json", Folder.Path("a.vtf"), Folder.Path("gone.vtf")});
  EXPECT_EQ(result.ExitCode, 1);
  // One object a line, also of what cannot be read.
  std::istringstream lines(result.Out);
  std::string line;
  ASSERT_TRUE(std::getline(lines, line));
  EXPECT_EQ(nlohmann::json::parse(line)["frames"], 2);
  ASSERT_TRUE(std::getline(lines, line));
  EXPECT_EQ(nlohmann::json::parse(line)["file"], Folder.Path("gone.vtf"));
  EXPECT_THAT(nlohmann::json::parse(line)["error"], HasSubstr("No such file"));
  EXPECT_THAT(result.Err, HasSubstr("gone.vtf"));
  // Several are parted by an empty line, and one that cannot be read ends none of the others.
  const std::string one = RunCommand({"vtf", "info", Folder.Path("a.vtf")}).Out;
  result = RunCommand({"vtf", "info", Folder.Path("a.vtf"), Folder.Path("gone.vtf"), Folder.Path("a.vtf")});
  EXPECT_EQ(result.ExitCode, 1);
  EXPECT_EQ(result.Out, one + "\n" + one);
  EXPECT_EQ(RunCommand({"vtf", "info"}).ExitCode, 2);
  EXPECT_THAT(RunCommand({"vtf", "info", "--help"}).Out, HasSubstr("\nExample:\n  tarnwick-cli vtf info --json "));
}

}  // namespace

}  // namespace tarnwick::tests
