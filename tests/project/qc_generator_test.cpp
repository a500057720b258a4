#include "project/qc_generator.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "project/source_files.h"
#include "support/crate_project.h"
#include "support/memory_settings.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::project {
namespace {

using core::BoxIcon;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tests::ReadText;
using tests::RecordedBox;
using tests::WriteText;

class QcGenerator : public testing::Test {
 protected:
  bool Generate() { return WriteQcScript(crate.Project, report, qcPath); }
  /// The script that `Generate` has written.
  std::string Script() { return ReadText(folder.Path("crate.qc")); }

  tests::ScratchFolder folder;
  tests::CrateProject crate{folder.Path() + "/"};
  ModelProject& project = crate.Project;
  tests::RecordingReport report;
  std::string qcPath;
};

TEST_F(QcGenerator, WritesTheScriptOfACrate) {
  project.Sequences.At(0).smdFile = "C:\\work\\spin.smd";
  project.collisionFile = "C:\\work\\crate_phy.smd";
  ASSERT_TRUE(Generate());
  EXPECT_EQ(qcPath, folder.Path("crate.qc"));
  EXPECT_THAT(report.Boxes, IsEmpty());
  EXPECT_EQ(Script(), R"($modelname "props/crate.mdl"
$scale 1.00
$cdmaterials "models/props"

$body "Body" "crate.smd"

$sequence "spin" "C:\work\spin.smd" fps 30.000 loop )"
                      R"(

$collisiontext {
break { "model" "props/crate_gib.mdl" "health" "10" }
}

$surfaceprop "wood"

$keyvalues { "prop_data" {"base" "Wooden.Small"} }

$collisionmodel "C:\work\crate_phy.smd" {
	$concave
	$mass 100.000
}
)");
}

TEST_F(QcGenerator, WritesEveryListInItsOrder) {
  project.propType = 4;
  crate.Options = {.scale = 2.5, .mass = 12.3456, .surfaceProp = "flesh", .additionalQc = "nowhere"};
  project.Lods.Add({"far.smd", "25"});
  project.QcCommands.Add({"$cbox 0 \"q\""});
  project.Skins.Add({"wood"});
  project.Skins.Add({"metal"});
  project.Attachments.Add({"eyes", "head bone", "0 1 2", "90 0 0"});
  project.Gibs.Add({"b.mdl", "", "3"});
  project.Gibs.Add({"", "", ""});
  SequenceEntry& spin = project.Sequences.At(0);
  spin.smdFile = "spin.smd";
  spin.fps = 12.3456;
  spin.activity = "ACT_IDLE";
  spin.activityStrength = -2;
  spin.rotateDirection = 1;
  spin.rotateAmount = -90;
  spin.AddEvent({"5001", "3", "0"});
  spin.AddEvent({"named", "4", ""});
  spin.AddCommand("fadein \"1\"");
  SequenceEntry plain;
  plain.name = "plain";
  plain.smdFile = "plain.smd";
  plain.rotateAmount = 45;  // without a direction it is not printed
  plain.activityStrength = 7;
  project.Sequences.Add(plain);
  project.useReferenceAsCollision = true;
  ASSERT_TRUE(Generate());
  EXPECT_THAT(report.Boxes, IsEmpty());
  EXPECT_EQ(Script(), R"($modelname "props/crate.mdl"
$scale 2.50
$cdmaterials "models/props"

$body "Body" "crate.smd"

$lod 25 {
   replacemodel "crate.smd" "far.smd"
}

$cbox 0 "q"

$texturegroup skin {
 { "wood" }
{ "metal" }
}

$sequence "spin" "spin.smd" fps 12.346 ACT_IDLE -2 rotate -90.000 loop {
     fadein "1"
     { event "5001" "3" "0" }
     { event "named" "4" }
}

$sequence "plain" "plain.smd" fps 30.000 )"
                      R"(

$attachment "eyes" "head bone" 0 1 2 rotate 90 0 0

$collisiontext {
break { "model" "props/crate_gib.mdl" "health" "10" }
break { "model" "b.mdl" "fadetime" "3" }
break { "model" "" }
}

$surfaceprop "flesh"

$collisionmodel ")" + project.referenceSmd +
                          "\" {\n\t$concave\n\t$mass 12.346\n}\n");
}

TEST_F(QcGenerator, ChecksInOrderAndWritesNothingThen) {
  ModelOptions options;
  ModelProject bare(options);
  const auto expectRefusal = [&](const char* text, const char* caption) {
    report.Boxes.clear();
    EXPECT_FALSE(WriteQcScript(bare, report, qcPath));
    EXPECT_THAT(report.Boxes, ElementsAre(RecordedBox{BoxIcon::Stop, text, caption}));
  };
  expectRefusal("No Model file specified", "Model Error");
  bare.modelFile = "a.mdl";
  expectRefusal("No Reference SMD file specified", "Reference SMD Error");
  bare.referenceSmd = folder.Path("missing/a.smd");
  expectRefusal("No Collision SMD file specified", "PHY SMD Error");
  bare.useReferenceAsCollision = true;
  expectRefusal("Unable to open temp file for .qc", "QC Error");
  EXPECT_THAT(report.LogText, HasSubstr(folder.Path("missing/a.qc") + ": "));
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(QcGenerator, RefusesAReferenceThatNamesNoScriptOrIsTheScript) {
  const auto expectRefusal = [&](const std::string& reference, const std::string& collision, const char* why) {
    project.referenceSmd = reference;
    project.collisionFile = collision;
    report.Boxes.clear();
    EXPECT_FALSE(Generate()) << reference;
    ASSERT_EQ(report.Boxes.size(), 1u);
    EXPECT_EQ(report.Boxes[0].Icon, BoxIcon::Stop);
    EXPECT_THAT(report.Boxes[0].Text, HasSubstr(why));
  };
  expectRefusal("crate", "phy.smd", "no full stop");
  expectRefusal(folder.Path("dotted.folder/crate"), "phy.smd", "no full stop");
  expectRefusal("dotted.folder\\crate", "phy.smd", "no full stop");
  expectRefusal(folder.Path("crate.qc"), "phy.smd", "overwrite the Reference SMD");
  expectRefusal(folder.Path("crate.smd"), folder.Path("sub/../crate.qc"), "overwrite the Collision file");
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(QcGenerator, WarnsOfWhatAStaticPropLeavesOut) {
  project.propType = PropStatic;
  project.materialDirectory.clear();
  project.Sequences.Clear();
  ASSERT_TRUE(Generate());
  EXPECT_THAT(report.Boxes,
              ElementsAre(RecordedBox{BoxIcon::Exclamation,
                                      "No Materials Directory Specified\r\n,Using material/models directory",
                                      "Materials Directory Warning"},
                          RecordedBox{BoxIcon::Exclamation, "Animation on prop_static IGNORED", "Warning"},
                          RecordedBox{BoxIcon::Exclamation, "Gibs specified on prop_static IGNORED", "Warning"}));
  EXPECT_THAT(Script(), HasSubstr("$scale 1.00\n$staticprop\n$cdmaterials \"models\"\n\n$body"));
  EXPECT_THAT(Script(), HasSubstr("$sequence \"Idle\" \"" + project.referenceSmd + "\" fps 30 ACT_IDLE 1\n\n$surf"));
  EXPECT_THAT(Script(), Not(HasSubstr("$collisiontext")));
}

TEST_F(QcGenerator, TakesTheReferenceAsTheOnlySequenceWithoutAWarning) {
  project.useReferenceAsSequence = true;
  ASSERT_TRUE(Generate());
  EXPECT_THAT(report.Boxes, IsEmpty());
  EXPECT_THAT(Script(), HasSubstr("\"Idle\""));
  EXPECT_THAT(Script(), Not(HasSubstr("spin")));
}

TEST_F(QcGenerator, LeavesAPartialScriptForWantOfSequencesButNeverOverAGoodOne) {
  project.Sequences.Clear();
  project.propType = 3;
  EXPECT_FALSE(Generate());
  EXPECT_THAT(report.Boxes, ElementsAre(RecordedBox{BoxIcon::Stop, "No Sequences Specified", "Error"}));
  EXPECT_EQ(qcPath, "");
  EXPECT_THAT(Script(), EndsWith("$body \"Body\" \"crate.smd\"\n\n"));
  WriteText(folder.Path("crate.qc"), "good");
  EXPECT_FALSE(Generate());
  EXPECT_EQ(Script(), "good");
}

TEST_F(QcGenerator, IncludesACollisionScript) {
  project.collisionFile = "jointed\\phys.qci";
  ASSERT_TRUE(Generate());
  EXPECT_THAT(Script(), EndsWith("\n\n$pushd \"jointed/phys.qci\"\n$include \"jointed\\phys.qci\"\n$popd\n"));
  for (const char* mesh : {"phys.QCI", ".qc", "phys.qcx", "qc"}) {
    project.collisionFile = mesh;
    ASSERT_TRUE(Generate());
    EXPECT_THAT(Script(), HasSubstr("$collisionmodel \"" + std::string(mesh) + "\" {\n")) << mesh;
  }
}

TEST_F(QcGenerator, NamesTheScriptAfterTheWholeStemAndTheBodyAfterTheFile) {
  project.referenceSmd = folder.Path() + "\\a.b.smd";
  ASSERT_TRUE(Generate());
  EXPECT_EQ(qcPath, folder.Path("a.b.qc"));
  EXPECT_THAT(ReadText(qcPath), HasSubstr("$body \"Body\" \"a.b.smd\"\n"));
}

TEST_F(QcGenerator, SavesTheProjectAlsoWhenTheCheckFails) {
  ProfileStore store;
  tests::MemorySettings settings;
  project.collisionFile.clear();
  EXPECT_FALSE(GenerateQc(project, store, settings, report, qcPath));
  EXPECT_EQ(store.GetString("Model Compiler", "Model File", ""), "props/crate.mdl");
  EXPECT_EQ(settings.GetString("Tarnwick", "Model File", ""), "props/crate.mdl");
  EXPECT_EQ(settings.GetInt("Tarnwick", "Prop Type", 0), 2);
}

TEST_F(QcGenerator, KeepsACopyOfAScriptOfAnotherMaker) {
  for (const char* foreign : {"// mine\n", "$modelname \"a.mdl\"\n$body studio \"a.smd\"\n", ""}) {
    WriteText(folder.Path("crate.qc"), foreign);
    ASSERT_TRUE(Generate());
    EXPECT_TRUE(Generate()) << "our own script needs no copy";
  }
  project.useReferenceAsCollision = true;
  project.collisionFile = "jointed.qci";
  project.propType = PropStatic;
  EXPECT_TRUE(Generate() && Generate());
  EXPECT_THAT(folder.Files(), ElementsAre("crate.qc", "crate.qc.bak", "crate.qc.bak2", "crate.qc.bak3"));
  EXPECT_EQ(ReadText(folder.Path("crate.qc.bak")), "// mine\n");
  EXPECT_THAT(report.Boxes.at(0).Text, HasSubstr("kept as \"" + folder.Path("crate.qc.bak") + "\""));
  EXPECT_EQ(report.Boxes.at(0).Icon, BoxIcon::Information);
}

TEST_F(QcGenerator, MeansARelativeReferenceFromTheProjectsFolder) {
  project.referenceSmd = "meshes\\crate.smd";
  EXPECT_FALSE(Generate());
  EXPECT_THAT(report.Boxes.at(0).Text, HasSubstr("Save the project"));
  project.configFile = folder.Path("a.sc");
  std::filesystem::create_directory(folder.Path("meshes"));
  ASSERT_TRUE(Generate());
  EXPECT_EQ(qcPath, folder.Path("meshes/crate.qc"));
  EXPECT_EQ(project.referenceSmd, "meshes\\crate.smd") << "the form stays as it is";
}

TEST_F(QcGenerator, NamesWhatTheCompilerWillNotFind) {
  WriteText(folder.Path("crate.smd"), "");
  WriteText(folder.Path("Far.SMD"), "");
  project.collisionFile = "phy.smd";
  project.Lods.Add({"far.smd", "10"});
  project.Lods.Add({"farther", "20"});
  EXPECT_THAT(MissingSources(project),
              ElementsAre("the Collision SMD phy.smd is not there", "the LOD SMD File farther is not there",
                          "of the sequence \"spin\" the Animation SMD " + folder.Path("spin.smd") + " is not there"));
  WriteText(folder.Path("farther.smd"), "");
  project.useReferenceAsCollision = true;
  project.useReferenceAsSequence = true;
  EXPECT_THAT(MissingSources(project), IsEmpty());
}

}  // namespace
}  // namespace tarnwick::project
