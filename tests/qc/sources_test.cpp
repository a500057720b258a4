#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qc/read_script.h"
#include "support/scratch_folder.h"

namespace tarnwick::qc {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using tests::ScratchFolder;
using tests::Told;
using tests::WriteText;

class QcSources : public testing::Test {
 protected:
  Script Read(std::string_view text) {
    WriteText(m_folder.Path("walker.qc"), "$modelname walker.mdl\n" + std::string(text));
    return ReadScript(m_folder.Path("walker.qc"));
  }
  void Touch(const std::string& name) { WriteText(m_folder.Path(name), "version 1\n"); }
  std::vector<std::string> Found(const Script& script) {
    std::vector<std::string> names;
    for (const Source& source : script.Sources) {
      names.push_back(source.Path.empty() ? "" : source.Path.substr(m_folder.Path().size() + 1));
    }
    return names;
  }

  ScratchFolder m_folder;
};

TEST_F(QcSources, AreFoundInAnyCaseSlashAndWithoutTheirEnding) {
  Touch("Sources/Walker.SMD");
  Touch("Sources/face.vta");
  Touch("sources2/phys.sma");
  Touch("a.b.smd");
  const Script script = Read(
      "$body a \"SOURCES\\walker\"\n$body b sources/WALKER.smd\n$body c sources/walker.dmx\n$body d a.b\n"
      "$model e a.b { flexfile sources/face.smd { } }\n$collisionmodel sources2\\PHYS\n$sequence idle sources/walker\n"
      "$bodygroup g { studio \"./Sources//walker.smd\" }");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_EQ(Found(script).front(), "Sources/Walker.SMD");
  EXPECT_EQ(script.Statements[2].Arguments[1].Source, 0);
  EXPECT_EQ(script.Statements[3].Arguments[1].Source, 0);
  EXPECT_EQ(script.Statements[7].Options[0].Arguments[0].Source, 0);
  EXPECT_EQ(Found(script)[2], "Sources/face.vta");
}

TEST_F(QcSources, AreLookedForInTheFoldersThatTheScriptNames) {
  Touch("meshes/low/a.smd");
  Touch("meshes/b.smd");
  Touch("more/c.smd");
  Touch("d.smd");
  const Script script = Read(
      "$pushd Meshes\n$pushd \"low\\\"\n$body a a\n$body d d\n$popd\n$body b b\n$popd\n$addsearchdir more\n$body c c\n"
      "$cd meshes\n$body b2 b.smd\n$cd \"C:\\gone\"\n$body d2 d\n$popd\n$pushd more");
  EXPECT_THAT(Found(script), ElementsAre("meshes/low/a.smd", "d.smd", "meshes/b.smd", "more/c.smd"));
  EXPECT_THAT(Told(script),
              ElementsAre(HasSubstr("walker.qc:13:5: warning: there is no folder \"C:\\gone\"; files are looked for in "
                                    "the script's folder"),
                          HasSubstr("walker.qc:15:1: warning: there is no $pushd"),
                          HasSubstr("walker.qc:16:1: warning: a $pushd has no $popd")));
}

TEST_F(QcSources, AreKnownByANameThatStoodAboveOrWithoutAFolderThatIsGone) {
  Touch("meshes/a.smd");
  Touch("meshes/a.vta");
  Touch("b.smd");
  const Script script =
      Read("$pushd meshes\n$body a A.smd\n$popd\n$sequence idle a\n$lod 5 { replacemodel a a }\n$body b ..\\ref\\b\n");
  EXPECT_THAT(Found(script), ElementsAre("meshes/a.smd", "b.smd"));
  EXPECT_THAT(Told(script), ElementsAre(HasSubstr("\"..\\ref\\b\" is not there")));
  EXPECT_THAT(Told(Read("$body a meshes/a\n$model m a { flexfile meshes/a { } }\n$model n b { flexfile b { } }")),
              Contains(HasSubstr("\"b\" was not found")));
}

TEST_F(QcSources, ThatAreNotThereAreToldOnceWithTheNameThatIs) {
  Touch("sources/walker.smd");
  Touch("sources/jump.smd");
  Touch("sources/walker.vta");
  const Script script = Read(
      "$pushd sources\n$body a \"walkr.smd\"\n$body b walkr\n$sequence j jmp.smd lop\n$proceduralbones walker.vrd\n"
      "$sequence k \"D:\\work\\Jump.smd\"\n$lod 5 { replacemodel walkr blank }\n$popd");
  EXPECT_THAT(
      Told(script),
      ElementsAre(
          "walker.qc:3:9: error: the mesh \"walkr.smd\" was not found in sources/; did you mean \"walker.smd\"?",
          HasSubstr("walker.qc:6:18: warning: the procedural bone file \"walker.vrd\" was not found"),
          HasSubstr("walker.qc:7:13: warning: \"D:\\work\\Jump.smd\" is not there; "),
          "walker.qc:5:13: error: \"jmp.smd\" is no word of $sequence, no animation declared above and no file "
          "in sources/; did you mean \"jump.smd\"?",
          "walker.qc:5:21: error: \"lop\" is no word of $sequence, no animation declared above and no file in "
          "sources/; did you mean \"loop\"?"));
}

TEST_F(QcSources, TellAnAnimationThatStandsBelowItsSequence) {
  Touch("jump.smd");
  const Script script = Read("$sequence j { a_jump a_jumm }\n$animation A_jump jump\n");
  EXPECT_THAT(Told(script),
              ElementsAre(HasSubstr("2:15: error: the animation \"a_jump\" stands below the sequence that shows it"),
                          HasSubstr("2:22: error: \"a_jumm\" is no word of $sequence")));
}

TEST_F(QcSources, AnAnimationGoesAheadOfAFileAndAFileAheadOfASequence) {
  Touch("a.smd");
  Touch("idle.smd");
  const Script script =
      Read("$animation a a.smd\n$sequence idle idle\n$sequence lean a\n$sequence y idle\n$sequence z LEAN");
  EXPECT_THAT(Told(script), IsEmpty());
  const auto source = [&](size_t statement) { return script.Statements[statement].Options[0].Arguments[0]; };
  EXPECT_EQ(source(3).Statement, 1);
  EXPECT_EQ(source(4).Statement, -1);
  EXPECT_EQ(script.Sources[static_cast<size_t>(source(4).Source)].Path, m_folder.Path("idle.smd"));
  EXPECT_EQ(source(5).Statement, 3);
}

TEST_F(QcSources, BehindASequencesNameGoAheadOfTheWordsThatTheyAreNamedLike) {
  Touch("post.smd");
  Touch("Frame.smd");
  const Script script = Read(
      "$sequence idle post fps 5 post\n$sequence open \"frame\" loop\n$animation X post\n$sequence lean X\n"
      "$sequence turn { snap post post.smd }\n");
  EXPECT_THAT(Told(script), IsEmpty());
  const auto kinds = [&](size_t statement) {
    std::vector<Key> result;
    for (const Option& option : script.Statements[statement].Options) result.push_back(option.Kind);
    return result;
  };
  EXPECT_THAT(kinds(1), ElementsAre(Key::Source, Key::Fps, Key::Post));
  EXPECT_THAT(kinds(2), ElementsAre(Key::Source, Key::Loop));
  EXPECT_THAT(kinds(4), ElementsAre(Key::Source));
  EXPECT_THAT(kinds(5), ElementsAre(Key::Snap, Key::Post, Key::Source));
}

}  // namespace
}  // namespace tarnwick::qc
