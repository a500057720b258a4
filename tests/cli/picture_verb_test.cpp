#include "cli/picture_verb.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "command_line.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;

class PictureVerb : public VerbTest {
 protected:
  int Run(const std::vector<std::string>& arguments) { return RunVerb({"picture", "--size", "40x30"}, arguments); }
  /// Whether this machine can draw at all; a call that cannot says so.
  bool CanDraw() {
    Run({ModelBuilder{}.Write(m_models.Path()), "-o", m_output.Path("try.png")});
    return m_err.find("there is no renderer") == std::string::npos;
  }

  ScratchFolder m_models;
  ScratchFolder m_output;
};

TEST_F(PictureVerb, DrawsAFileAndTellsWhatIsMissing) {
  if (!CanDraw()) GTEST_SKIP() << m_err;
  EXPECT_EQ(m_out, m_output.Path("try.png") + "\n");
  EXPECT_THAT(m_err, HasSubstr("Warning: the material skin: it was not found"));
  EXPECT_EQ(Run({m_models.Path("cube.mdl"), "--json", "-o", m_output.Path("two.png")}), ExitSuccess);
  const auto json = nlohmann::json::parse(m_out);
  EXPECT_EQ(json["outcome"], "ok");
  EXPECT_EQ(json["picture"], m_output.Path("two.png"));
  EXPECT_EQ(json["missing"][0]["name"], "skin");
  EXPECT_GE(json["missing"][0]["tried"].size(), 2u);
  EXPECT_EQ(json["missing"][0]["neededBy"], "");
  EXPECT_EQ(json["missing"][0]["reason"], "it was not found");
  EXPECT_EQ(json["model"], m_models.Path("cube.mdl"));
  EXPECT_EQ(json["warnings"], nlohmann::json({"the material skin: it was not found"}));
  EXPECT_EQ(json["errors"], nlohmann::json::array());
  EXPECT_GT(json["seconds"], 0);
  // Width and height stand behind the signature and the head of the first chunk.
  EXPECT_EQ(ReadText(m_output.Path("two.png")).substr(16, 8), std::string("\0\0\0\x28\0\0\0\x1E", 8));
  EXPECT_EQ(Run({m_models.Path(), "-q", "-r", "-j", "2", "-o", m_output.Path("all")}), ExitSuccess);
  EXPECT_EQ(m_out, "");
  EXPECT_THAT(m_output.Files(), ElementsAre("all/cube.png", "try.png", "two.png"));
}

TEST_F(PictureVerb, DrawsAModelOfTheGame) {
  if (!CanDraw()) GTEST_SKIP() << m_err;
  WriteText(m_models.Path("mod/gameinfo.txt"), "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. } } }");
  ModelBuilder{}.Write(m_models.Path("mod/models"), "crate");
  EXPECT_EQ(Run({"--game", m_models.Path("mod"), "game:models/crate.mdl", "-o", m_output.Path("game.png")}),
            ExitSuccess)
      << m_err;
  EXPECT_EQ(Run({"game:models/crate.mdl", "-o", m_output.Path("no.png")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("no game directory is known"));
}

TEST_F(PictureVerb, EachOptionChangesThePicture) {
  if (!CanDraw()) GTEST_SKIP() << m_err;
  ModelBuilder model{.SkinFamilies = {{0}, {0}}, .Animations = {{.Name = "@a", .FrameCount = 3}, {.Name = "@b"}}};
  model.Sequences = {{.Label = "first"}, {.Label = "turned"}};
  model.Sequences[1].Blends = {1};
  const std::string path = model.Write(m_models.Path(), "moves");
  const auto draw = [&](std::vector<std::string> options) {
    options.insert(options.end(), {path, "-q", "-o", m_output.Path("x.png")});
    EXPECT_EQ(Run(options), ExitSuccess) << m_err;
    return ReadText(m_output.Path("x.png"));
  };
  EXPECT_EQ(draw({"--angle", "30,15"}), draw({})) << "what the help says";
  const std::vector<std::string> below{"--angle", "30,-15"};  // the triangle is seen from there
  const std::string plain = draw({below[0], below[1], "-j", "1"});
  for (const char* angle : {"80,-15", "30,-40", "30,15"}) EXPECT_NE(draw({"--angle", angle}), plain) << angle;
  for (const char* option : {"--wireframe", "--transparent"}) {
    EXPECT_NE(draw({below[0], below[1], option}), plain) << option;
  }
  EXPECT_EQ(draw({"--angle", "3600,-90"}), draw({"--angle", "-3600,-90"})) << "the ends are angles too";
  EXPECT_EQ(Run({path, "--frame", "3", "-o", m_output.Path("no.png")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("there is no frame 3: the sequence has 3, counted from 0"));
  EXPECT_EQ(Run({path, "--frame", "2", "-o", m_output.Path("x.png")}), ExitSuccess);
  EXPECT_EQ(Run({path, "--sequence", "TURNED", "--frame", "1", "-o", m_output.Path("no.png")}), ExitFailure);
  EXPECT_EQ(Run({path, "--skin", "1", "-o", m_output.Path("x.png")}), ExitSuccess);
  EXPECT_EQ(Run({path, "--skin", "2", "-o", m_output.Path("no.png")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("there is no skin 2: it has 2, counted from 0"));
  std::filesystem::create_directory(m_output.Path("a.jpg"));
  EXPECT_EQ(Run({path, "-o", m_output.Path("a.jpg")}), ExitSuccess) << "a folder may be called so";
  EXPECT_EQ(m_out, m_output.Path("a.jpg/moves.png") + "\n");
}

TEST_F(PictureVerb, FailsWithOneForAModelAndWithTwoForTheCommandLine) {
  if (!CanDraw()) GTEST_SKIP() << m_err;
  const std::string model = m_models.Path("cube.mdl");
  EXPECT_EQ(Run({m_models.Path("none.mdl"), "-o", m_output.Path("a.png")}), ExitFailure);
  EXPECT_EQ(Run({model, "--sequence", "walk", "-o", m_output.Path("a.png")}), ExitFailure);
  EXPECT_THAT(m_err, HasSubstr("no sequence \"walk\""));
  const std::vector<std::vector<std::string>> wrong{{model},
                                                    {"-o", m_output.Path("a.png")},
                                                    {model, "-o", m_output.Path("a.jpg")},
                                                    {model, "-o", m_output.Path("a.png"), "--angle", "30"},
                                                    {model, "-o", m_output.Path("a.png"), "--angle", "1,91"},
                                                    {model, "-o", m_output.Path("a.png"), "--angle", "3601,1"},
                                                    {model, "-o", m_output.Path("a.png"), "--angle", "1,x"},
                                                    {model, "-o", m_output.Path("a.png"), "--skin", "-1"},
                                                    {model, "-o", m_output.Path("a.png"), "--frame", "x"}};
  for (const auto& arguments : wrong) EXPECT_EQ(Run(arguments), ExitUsage) << testing::PrintToString(arguments);
  for (const char* size : {"512", "0x5", "5x9000", "5x5x5", "1.5x2", "x", "-1x5", "nanx5"}) {
    EXPECT_EQ(RunCommand({"picture", model, "-o", m_output.Path("a.png"), "--size", size}).ExitCode, ExitUsage) << size;
  }
  EXPECT_THAT(m_output.Files(), ElementsAre("try.png"));
}

}  // namespace
}  // namespace tarnwick::cli
