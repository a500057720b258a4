#include "cli/decompile_verb.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "command_line.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DecompileVerb : public VerbTest {
 protected:
  int Run(const std::vector<std::string>& arguments) { return RunVerb({"decompile"}, arguments); }

  ScratchFolder m_models;
  ScratchFolder m_output;
};

TEST_F(DecompileVerb, OneModelGoesStraightIntoTheFolderThatIsMade) {
  const std::string model = ModelBuilder{}.Write(m_models.Path());
  EXPECT_EQ(Run({model, "-o", m_output.Path("new/deep")}), ExitSuccess);
  EXPECT_THAT(m_output.Files(), ElementsAre("new/deep/cube.smd", "new/deep/ravelback.qc"));
  EXPECT_THAT(m_err, HasSubstr("Completed Dumping Model!\n1 model, 2 files"));
  EXPECT_EQ(m_out, "");
}

TEST_F(DecompileVerb, SeveralModelsGetFoldersOfTheirOwn) {
  ModelBuilder{}.Write(m_models.Path("a"), "cube");
  ModelBuilder{}.Write(m_models.Path("a/deep"), "cube");
  ModelBuilder{}.Write(m_models.Path("b"), "CUBE");
  EXPECT_EQ(Run({m_models.Path("a/cube.mdl"), m_models.Path("b/CUBE.mdl"), "-q", "-o", m_output.Path()}), ExitSuccess);
  EXPECT_THAT(m_output.Files(),
              ElementsAre("CUBE_2/cube.smd", "CUBE_2/ravelback.qc", "cube/cube.smd", "cube/ravelback.qc"));
  EXPECT_EQ(m_err, "");

  EXPECT_EQ(Run({m_models.Path("a"), "-r", "-j", "3", "-o", m_output.Path("tree")}), ExitSuccess);
  for (const char* name : {"a/cube.mdl", "a/deep/cube.mdl"}) {
    EXPECT_THAT(WithSlashes(m_err), HasSubstr("Loaded model " + m_models.Path(name) + "\n")) << "the log of each";
  }
  EXPECT_TRUE(std::filesystem::exists(m_output.Path("tree/cube/cube.smd")));
  EXPECT_TRUE(std::filesystem::exists(m_output.Path("tree/deep/cube/cube.smd")));

  EXPECT_EQ(Run({m_models.Path("a"), "-o", m_output.Path("flat")}), ExitSuccess);
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("flat/deep")));
}

TEST_F(DecompileVerb, AFailureStopsNoOtherModelAndIsCountedByReason) {
  for (const char* name : {"a", "b", "c", "d", "good"}) ModelBuilder{}.Write(m_models.Path(), name);
  std::filesystem::remove(m_models.Path("c.vvd"));
  std::filesystem::create_directories(m_output.Path("d/cube.smd"));
  std::filesystem::remove(m_models.Path("a.dx90.vtx"));
  std::filesystem::remove(m_models.Path("b.dx90.vtx"));
  EXPECT_EQ(Run({m_models.Path(), "-o", m_output.Path()}), ExitFailure);
  EXPECT_TRUE(std::filesystem::exists(m_output.Path("good/cube.smd")));
  EXPECT_THAT(m_err, HasSubstr("5 models, 4 files"));
  EXPECT_THAT(m_err, HasSubstr("4 failed:\n"
                               "  1 x Error opening a mesh file\n"
                               "  1 x No vertex file\n"
                               "  2 x Unable to load vertices file\n"));
  EXPECT_EQ(m_out, m_output.Joined("good") + "\n");
}

TEST_F(DecompileVerb, PrintsAJsonObjectForEachModel) {
  const std::string good = ModelBuilder{}.Write(m_models.Path(), "good");
  EXPECT_EQ(Run({good, m_models.Path("none.mdl"), "--json", "-j", "1", "-o", m_output.Path()}), ExitFailure);
  std::istringstream lines(m_out);
  std::string line;
  std::getline(lines, line);
  const auto first = nlohmann::json::parse(line);
  EXPECT_EQ(first["model"], good);
  EXPECT_EQ(first["outcome"], "ok");
  EXPECT_EQ(first["output"], m_output.Joined("good"));
  EXPECT_EQ(first["files"][0]["path"], m_output.Joined("good") + core::PathSeparator + "ravelback.qc");
  EXPECT_EQ(first["bytes"], first["files"][0]["bytes"].get<int>() + first["files"][1]["bytes"].get<int>());
  EXPECT_THAT(first["errors"], IsEmpty());
  std::getline(lines, line);
  const auto second = nlohmann::json::parse(line);
  EXPECT_EQ(second["outcome"], "failed");
  EXPECT_EQ(second["files"], nlohmann::json::array()) << "a list, though nothing is in it";
  EXPECT_EQ(second["lost"], nlohmann::json::array());
  EXPECT_EQ(second["bytes"], 0);
  EXPECT_GT(first["seconds"], 0);
  EXPECT_EQ(first["warnings"], nlohmann::json::array());
  // The file and the reason, as the window's box and list have them.
  EXPECT_THAT(second["errors"],
              ElementsAre(testing::StartsWith("Error: Unable to load model: " + m_models.Path("none.mdl") + ": ")));
  EXPECT_FALSE(std::getline(lines, line));
}

TEST_F(DecompileVerb, OptionsReachTheJob) {
  ModelBuilder model;
  model.BodyParts[0].Models[0].Name = "folder\\cube.smd";
  const std::string path = model.Write(m_models.Path());
  EXPECT_EQ(Run({path, "--unweighted", "-o", m_output.Path()}), ExitSuccess);
  EXPECT_THAT(ReadText(m_output.Path("cube.smd")),
              HasSubstr("\n0 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 "
                        "0.000000 1.000000\n"));
  EXPECT_EQ(Run({path, "-o", m_output.Path("usual")}), ExitSuccess);
  EXPECT_NE(ReadText(m_output.Path("usual/cube.smd")), ReadText(m_output.Path("cube.smd"))) << "with weights";
  model.Physics = PhyBuilder{};
  model.Physics->Solids[0].Values.Parent = "nobody";
  const std::string solid = model.Write(m_models.Path());
  EXPECT_EQ(Run({solid, "--no-physics", "-o", m_output.Path("without")}), ExitSuccess);
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("without/phys.smd")));
  EXPECT_EQ(Run({solid, "--json", "-o", m_output.Path("with")}), ExitSuccess);
  EXPECT_TRUE(std::filesystem::exists(m_output.Path("with/phys.smd")));
  EXPECT_THAT(nlohmann::json::parse(m_out)["lost"],
              testing::Contains(nlohmann::json{{"kind", "parents of physics solids"}, {"count", 1}}));
  const std::string moves =
      ModelBuilder{.Animations = {{.Name = "@turn"}}, .Sequences = {{.Label = "turn"}}}.Write(m_models.Path(), "moves");
  EXPECT_EQ(Run({moves, "-o", m_output.Path("fixed")}), ExitSuccess);
  EXPECT_EQ(Run({moves, "--keep-rotations", "-o", m_output.Path("kept")}), ExitSuccess);
  EXPECT_NE(ReadText(m_output.Path("fixed/turn.smd")), ReadText(m_output.Path("kept/turn.smd")));
  EXPECT_EQ(Run({moves, "--no-animations", "-o", m_output.Path("still")}), ExitSuccess);
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("still/turn.smd")));
  EXPECT_EQ(Run({moves, "--own-folders", "-o", m_output.Path("own")}), ExitSuccess);
  EXPECT_TRUE(std::filesystem::exists(m_output.Path("own/moves/turn.smd")));
  EXPECT_EQ(Run({path, "--plain", "-o", m_output.Path()}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("File Error: Error opening " + m_output.Joined("folder/cube.smd")));
}

TEST_F(DecompileVerb, AWrongCommandLineIsToldFromFailedWork) {
  EXPECT_EQ(Run({}), ExitUsage);
  EXPECT_EQ(Run({"a.mdl", "--no-such-option"}), ExitUsage);
  EXPECT_EQ(Run({"a.mdl", "-j", "0"}), ExitUsage);
  EXPECT_EQ(Run({m_models.Path(), "-o", m_output.Path()}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("the folder holds no .mdl file"));
}

}  // namespace
}  // namespace tarnwick::cli
