#include "project/project_file.h"

#include <gmock/gmock.h>

#include "project/project_store.h"
#include "support/crate_project.h"
#include "support/memory_settings.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::project {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tests::ReadText;
using tests::WriteText;

/// Two projects with a store each, and a folder for their files.
class ProjectFile : public testing::Test {
 protected:
  bool Save(const std::string& name) { return SaveProjectFile(folder.Path(name), project, store, report); }
  bool Load(const std::string& name) { return OpenProjectFile(folder.Path(name), loaded, loadedStore, report); }
  void LoadLines(const std::string& lines) {
    report.Boxes.clear();
    WriteText(folder.Path("hand.sc"), lines);
    ASSERT_TRUE(Load("hand.sc"));
  }

  tests::ScratchFolder folder;
  tests::CrateProject crate;
  ModelProject& project = crate.Project;
  ProfileStore store;
  ModelOptions loadedOptions;
  ModelProject loaded{loadedOptions};
  ProfileStore loadedStore;
  tests::RecordingReport report;
};

/// Everything that a file keeps of two projects.
void ExpectEqual(const ModelProject& a, const ModelProject& b) {
  EXPECT_EQ(a.modelFile, b.modelFile);
  EXPECT_EQ(a.referenceSmd, b.referenceSmd);
  EXPECT_EQ(a.collisionFile, b.collisionFile);
  EXPECT_EQ(a.useReferenceAsSequence, b.useReferenceAsSequence);
  EXPECT_EQ(a.useReferenceAsCollision, b.useReferenceAsCollision);
  EXPECT_EQ(a.propType, b.propType);
  EXPECT_EQ(a.options, b.options);
  EXPECT_EQ(a.Sequences, b.Sequences);
  EXPECT_EQ(a.Attachments, b.Attachments);
  EXPECT_EQ(a.Gibs, b.Gibs);
  EXPECT_EQ(a.QcCommands, b.QcCommands);
  EXPECT_EQ(a.Lods, b.Lods);
  EXPECT_EQ(a.Skins, b.Skins);
}

TEST_F(ProjectFile, WritesEveryKey) {
  crate.Options.studioMdlOptions = 0x4C1;
  crate.Options.additionalQc = "kept";
  SequenceEntry& spin = project.Sequences.At(0);
  spin.AddCommand("fadein \"1\"");
  spin.AddEvent({"5001", "3", ""});
  project.Attachments.Add({"eyes", "head", "0 0 0", "1 2 3"});
  project.QcCommands.Add({"$cbox \"0\""});
  project.Lods.Add({"far.smd", "25"});
  project.Skins.Add({"wood"});
  project.Gibs.At(0).fadeTime = "4";
  ASSERT_TRUE(Save("a.sc"));
  EXPECT_EQ(project.configFile, folder.Path("a.sc"));
  EXPECT_EQ(ReadText(folder.Path("a.sc")), R"("Model Compiler/Anim SMD Check" "0"
"Model Compiler/Animation0/Activity" ""
"Model Compiler/Animation0/Activity Strength" "0"
"Model Compiler/Animation0/Command0" "fadein @1@"
"Model Compiler/Animation0/Event0/frame" "3"
"Model Compiler/Animation0/Event0/name" "5001"
"Model Compiler/Animation0/Event0/option" ""
"Model Compiler/Animation0/FPS" "30.00"
"Model Compiler/Animation0/Loop" "1"
"Model Compiler/Animation0/Name" "spin"
"Model Compiler/Animation0/Rotation" "0"
"Model Compiler/Animation0/Rotation Amount" "0.00"
"Model Compiler/Animation0/SMD Name" "C:\work\spin.smd"
"Model Compiler/Attachment0/Bone Name" "head"
"Model Compiler/Attachment0/Name" "eyes"
"Model Compiler/Attachment0/Rotation" "1 2 3"
"Model Compiler/Attachment0/Translation" "0 0 0"
"Model Compiler/Collision SMD" "C:\work\crate_phy.smd"
"Model Compiler/Gib0/Fade In Time" "10"
"Model Compiler/Gib0/Fade Out Time" "4"
"Model Compiler/Gib0/Model Name" "props/crate_gib.mdl"
"Model Compiler/LOD0/Distance" "25"
"Model Compiler/LOD0/SMD Name" "far.smd"
"Model Compiler/Model File" "props/crate.mdl"
"Model Compiler/Model Options/Additional QC" "kept"
"Model Compiler/Model Options/Mass" "100.00"
"Model Compiler/Model Options/Prop Type" "2"
"Model Compiler/Model Options/PropPhysics Type" "Wooden.Small"
"Model Compiler/Model Options/Scale" "1.00"
"Model Compiler/Model Options/StudioMDLOptions" "1217"
"Model Compiler/Model Options/SurfaceProp" "wood"
"Model Compiler/Phy SMD Check" "0"
"Model Compiler/QC Command0/Command" "$cbox ~0~"
"Model Compiler/Reference SMD" "C:\work\crate.smd"
"Model Compiler/Skin0/Skin Name" "wood"
)");
  ASSERT_TRUE(Load("a.sc"));
  ExpectEqual(project, loaded);
  EXPECT_THAT(report.Boxes, IsEmpty());
}

TEST_F(ProjectFile, ComesBackWithExactlyWhatItHad) {
  project.Sequences.Clear();
  for (int i = 0; i < 150; ++i) {  // more than a hundred, of which two of a kind have one name
    SequenceEntry entry;
    entry.name = "s" + std::to_string(i / 2);
    entry.fps = i + 0.25;
    entry.rotateDirection = 1;
    entry.rotateAmount = -i;
    for (int j = 0; j < i % 21; ++j) entry.AddCommand("c\"" + std::to_string(j));
    for (int j = 0; j < i % 21; ++j) entry.AddEvent({j == 1 ? "" : "e", std::to_string(j), ""});
    project.Sequences.Add(entry);
  }
  project.Gibs.Add({"", "5", ""});  // its editor asks for nothing
  project.QcCommands.Add({""});
  project.QcCommands.Add({"$last"});
  project.useReferenceAsSequence = true;
  ASSERT_TRUE(Save("a.sc"));
  ASSERT_TRUE(Load("a.sc"));
  ExpectEqual(project, loaded);
  EXPECT_THAT(report.Boxes, IsEmpty());
  ASSERT_TRUE(SaveProjectFile(folder.Path("b.sc"), loaded, loadedStore, report));
  EXPECT_EQ(ReadText(folder.Path("a.sc")), ReadText(folder.Path("b.sc")));
}

TEST_F(ProjectFile, HoldsNothingOfRemovedEntriesOrOfAnotherProject) {
  project.Skins.Add({"wood"});
  project.Sequences.At(0).AddCommand("snap");
  ASSERT_TRUE(Save("full.sc"));
  project.Sequences.At(0).SetCommands({});
  project.Skins.Clear();
  project.Gibs.Clear();
  ASSERT_TRUE(Save("less.sc"));
  EXPECT_THAT(ReadText(folder.Path("less.sc")),
              AllOf(Not(HasSubstr("Skin0")), Not(HasSubstr("Gib0")), Not(HasSubstr("Command0"))));
  ASSERT_TRUE(Load("full.sc"));
  ASSERT_TRUE(Load("less.sc"));
  ExpectEqual(project, loaded);
}

TEST_F(ProjectFile, GivesDefaultsForKeysThatAreMissing) {
  crate.Options.scale = 9;
  LoadLines(
      "\"Model Compiler/Model File\" \"a.mdl\"\n\"Model Compiler/Animation0/Name\" \"a@b\"\n"
      "\"Model Compiler/Animation0/Command0\" \"real @\"\n\"Model Compiler/QC Command0/Command\" \"~\"\n"
      "\"Model Compiler/Model Options/Mass\" \"no number\"\n");
  EXPECT_EQ(loaded.options.scale, 1.0);
  EXPECT_EQ(loaded.options.mass, 0.0);
  EXPECT_EQ(loaded.options.propPhysicsType, "metal.small");
  ASSERT_EQ(loaded.Sequences.Count(), 1);
  EXPECT_EQ(loaded.Sequences.At(0).fps, 30.0);
  EXPECT_EQ(loaded.Sequences.At(0).name, "a@b");
  EXPECT_EQ(loaded.Sequences.At(0).commands[0], "real \"");
  EXPECT_EQ(loaded.QcCommands.At(0).command, "\"");
  EXPECT_THAT(report.Boxes, IsEmpty());
}

TEST_F(ProjectFile, SaysWhatItLeavesOut) {
  std::string lines =
      "\"Model Compiler/Animation0/Name\" \"walk\"\n\"Model Compiler/Animation2/Name\" \"lost\"\n"
      "\"Model Compiler/Animation1/Name\" \"\"\nfoo\n";
  for (int i = 0; i < 23; ++i) lines += "\"Model Compiler/Animation0/Command" + std::to_string(i) + "\" \"c\"\n";
  for (int i = 0; i < 21; ++i) lines += "\"Model Compiler/Animation0/Event" + std::to_string(i) + "/name\" \"e\"\n";
  LoadLines(lines + "\n\"Model Compiler/Model File\" \"hidden\"\n");
  EXPECT_EQ(loaded.Sequences.Count(), 1);
  EXPECT_EQ(loaded.Sequences.At(0).commandCount, 20);
  EXPECT_EQ(loaded.Sequences.At(0).eventCount, 20);
  ASSERT_EQ(report.Boxes.size(), 1u);
  EXPECT_EQ(report.Boxes[0].Icon, core::BoxIcon::Exclamation);
  EXPECT_THAT(
      report.Boxes[0].Text,
      AllOf(HasSubstr(folder.Path("hand.sc")), HasSubstr("\"walk\" has 23 commands"), HasSubstr("21 events"),
            HasSubstr("Animation2/Name"), HasSubstr("Line 49 is empty"),
            HasSubstr("Damaged lines, of which was loaded what could be read: 4."), Not(HasSubstr("Command20"))));
}

TEST_F(ProjectFile, RefusesAFileThatIsNoProjectAndKeepsTheOldOne) {
  loaded.modelFile = "kept.mdl";
  WriteText(folder.Path("a.smd"), "version 1\nnodes\n0 \"root\" -1\nend\n");
  WriteText(folder.Path("empty.sc"), "");
  for (const char* bad : {"a.smd", "empty.sc", "missing.sc"}) {
    report.Boxes.clear();
    EXPECT_FALSE(Load(bad));
    ASSERT_EQ(report.Boxes.size(), 1u);
    EXPECT_EQ(report.Boxes[0].Icon, core::BoxIcon::Stop);
    EXPECT_THAT(report.Boxes[0].Text, HasSubstr(folder.Path(bad)));
    EXPECT_EQ(loaded.modelFile, "kept.mdl");
  }
}

TEST_F(ProjectFile, RefusesToSaveWhatItCouldNotLoad) {
  ASSERT_TRUE(Save("a.sc"));
  const std::string good = ReadText(folder.Path("a.sc"));
  const auto expectRefusal = [&](const char* what) {
    report.Boxes.clear();
    EXPECT_FALSE(Save("a.sc"));
    ASSERT_EQ(report.Boxes.size(), 1u);
    EXPECT_THAT(report.Boxes[0].Text, AllOf(HasSubstr(folder.Path("a.sc")), HasSubstr(what)));
    EXPECT_EQ(ReadText(folder.Path("a.sc")), good);
  };
  project.Sequences.At(0).commands[0] = "to @";
  project.Sequences.At(0).commandCount = 1;
  expectRefusal("Animation0/Command0");
  project.Sequences.At(0).name = "";
  expectRefusal("Animation0/Name");
  project.modelFile = "a\"b.mdl";
  expectRefusal("Compiled Model File");
}

TEST(ProjectSettings, StartTheProgramWithWhatWasSaved) {
  tests::CrateProject crate;
  crate.Project.configFile = "last.sc";
  crate.Project.useReferenceAsCollision = true;
  crate.Options.studioMdlOptions = 0x40;
  crate.Options.scale = 3;
  tests::MemorySettings settings;
  ProfileStore store;
  SaveProjectToStore(crate.Project, store, settings);

  ModelOptions options;
  ModelProject project(options);
  LoadFormFromSettings(settings, project);
  LoadOptionsFromSettings(settings, options);
  EXPECT_EQ(project.configFile, "last.sc");
  EXPECT_EQ(project.modelFile, crate.Project.modelFile);
  EXPECT_EQ(project.referenceSmd, crate.Project.referenceSmd);
  EXPECT_EQ(project.collisionFile, "C:\\work\\crate_phy.smd");
  EXPECT_EQ(project.useReferenceAsSequence, crate.Project.useReferenceAsSequence);
  EXPECT_TRUE(project.useReferenceAsCollision);
  EXPECT_EQ(project.propType, 2);
  EXPECT_EQ(project.Sequences.Count(), 0);
  ModelOptions expected = crate.Options;
  expected.scale = 1.0;  // kept in project files only
  EXPECT_EQ(options, expected);

  ModelOptions fresh{false, 0, "", 0, 1, "", "x"};
  LoadOptionsFromSettings(tests::MemorySettings(), fresh);
  EXPECT_EQ(fresh, ModelOptions());
}

}  // namespace
}  // namespace tarnwick::project
