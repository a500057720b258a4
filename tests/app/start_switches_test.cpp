#include "app/start_switches.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/paths.h"
#include "support/scratch_folder.h"

namespace tarnwick::app {

namespace {

TEST(StartSwitches, AreReadInAnyCaseAndPlace) {
  const struct {
    std::vector<std::string> Arguments;
    StartMode Mode;
  } cases[] = {
      {{}, StartMode::Window},
      {{"-RegServer"}, StartMode::Registration},
      {{"/UNREGSERVER"}, StartMode::Registration},
      {{"--regserver"}, StartMode::Registration},
      {{"x", "-unknown", "-REGSERVER"}, StartMode::Registration},
      {{"a-RegServer"}, StartMode::Registration},  // the mark may stand inside a word
      {{"-RegServer", "more"}, StartMode::Window},
      {{"RegServer"}, StartMode::Window},
      {{"/Embedding"}, StartMode::Embedded},
      {{"-automation", "more"}, StartMode::Embedded},
      {{"Embedding"}, StartMode::Window},
      {{"-Embeddings", "-"}, StartMode::Window},
      {{"-Embedding", "-RegServer"}, StartMode::Registration},
      {{"/home/ada/a.mdl"}, StartMode::Window},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(ReadStartSwitches(each.Arguments), each.Mode)
        << (each.Arguments.empty() ? "nothing" : each.Arguments.front());
  }
}

TEST(FilesOnLine, AreWholePathsAndNoSwitches) {
  const tests::ScratchFolder folder;
  const std::string file = folder.Path() + "/-odd.mdl";
  std::ofstream(file).put('x');
  const auto whole = [](const std::filesystem::path& path) { return core::PathText(absolute(path).make_preferred()); };
  EXPECT_EQ(FilesOnLine({"-x", "/unknown", "", "a b/./c.vtf", file, "/gone/model.mdl"}),
            (std::vector<std::string>{whole("a b/c.vtf"), whole(file), whole("/gone/model.mdl")}));
}

TEST(UnknownOptions, AreWhatTwoDashesMark) {
  const tests::ScratchFolder folder;
  tests::WriteText(folder.Path("--odd.mdl"), "x");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_FALSE(UnknownOption({"--odd.mdl", "-unknown", "/unknown", "a.mdl", "--version"}));
  EXPECT_EQ(UnknownOption({"a.mdl", "--verison", "--hlep"}), "--verison");
  EXPECT_FALSE(UnknownOption({"--", "a.mdl"}));
  EXPECT_FALSE(UnknownOption({"--verison", "--RegServer"})) << "a run without a window ends without a word";
  std::filesystem::current_path(before);
}

}  // namespace

}  // namespace tarnwick::app
