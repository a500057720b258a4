#include "project/project_edit.h"

#include <gmock/gmock.h>

#include <vector>

#include "support/crate_project.h"

namespace tarnwick::project {
namespace {

using testing::HasSubstr;

std::optional<std::string> SetProjectValue(ModelProject& project, const char* key, const char* value) {
  return SetProjectValues(project, std::vector<ProjectChange>{{key, value}});
}

TEST(ProjectEdit, SetsAndGetsSingleValues) {
  tests::CrateProject crate;
  const auto set = [&](const char* key, const char* value) {
    EXPECT_EQ(SetProjectValue(crate.Project, key, value), std::nullopt) << key;
    return GetProjectValue(crate.Project, key).value_or("none");
  };
  EXPECT_EQ(set("Model File", "b.mdl"), "b.mdl");
  EXPECT_EQ(set("Phy SMD Check", "1"), "1");
  EXPECT_EQ(set("Model Options/Scale", "2.125"), "2.12");
  EXPECT_EQ(set("Animation0/Command0", "fade \"1\""), "fade \"1\"");
  EXPECT_EQ(set("Animation0/Event0/name", "5001"), "5001");
  EXPECT_EQ(set("Model Compiler/Animation1/Name", "run"), "run");
  EXPECT_EQ(set("Model Options/Prop Type", "Weapon"), "3");
  EXPECT_EQ(set("Animation1/Rotation", "RZ"), "1");
  EXPECT_EQ(set("QC Command0/Command", "$\"x\""), "$\"x\"");
  EXPECT_EQ(crate.Project.Sequences.At(0).commands[0], "fade \"1\"");
  EXPECT_EQ(crate.Project.Sequences.At(1).fps, 30.0);
  EXPECT_EQ(crate.Options.scale, 2.12);
  EXPECT_EQ(GetProjectValue(crate.Project, "Animation2/Name"), std::nullopt);
}

TEST(ProjectEdit, RefusesWithoutAChange) {
  tests::CrateProject crate;
  for (int i = 0; i < 20; ++i) crate.Project.Sequences.At(0).AddCommand("c");
  const SequenceList before = crate.Project.Sequences;
  const auto expect = [&](const char* key, const char* value, const char* why) {
    const auto problem = SetProjectValue(crate.Project, key, value);
    ASSERT_TRUE(problem) << key;
    EXPECT_THAT(*problem, HasSubstr(why));
  };
  expect("Modelfile", "x", "no key");
  expect("Animation00/Name", "x", "no key");
  expect("Animation0/Event1", "x", "no key");
  expect("Phy SMD Check", "yes", "0 or 1");
  expect("Model Options/Mass", "12kg", "a number");
  expect("Model Options/Scale", "inf", "a number");
  expect("Model Options/Scale", "0.001", "kept as 0.00");
  expect("Model Options/Prop Type", "5", "prop_physics (2)");
  expect("Animation0/Loop", "1.5", "whole number");
  expect("Animation0/Name", "a\"b", "double quote");
  expect("Animation0/Name", "", "must have a value");
  expect("Animation0/Command3", "a@b", "@");
  expect("Animation0/Command20", "one more", "20 commands");
  expect("Animation2/Name", "gap", "without a gap");
  expect("Gib1/Fade In Time", "3", "first field");
  EXPECT_TRUE(SetProjectValues(crate.Project,
                               std::vector<ProjectChange>{{"Animation1/Name", "run"}, {"Skin1/Skin Name", "x"}}));
  EXPECT_EQ(crate.Project.Sequences, before);
}

TEST(ProjectEdit, TakesTheFieldsOfANewEntryInAnyOrder) {
  tests::CrateProject crate;
  const std::vector<ProjectChange> changes{
      {"Attachment0/Bone Name", "hand"}, {"Attachment0/Rotation", "0 90 0"}, {"Attachment0/Name", "muzzle"}};
  EXPECT_EQ(SetProjectValues(crate.Project, changes), std::nullopt);
  EXPECT_EQ(crate.Project.Attachments.At(0), (AttachmentEntry{"muzzle", "hand", "0 0 0", "0 90 0"}));
}

TEST(ProjectEdit, RemovesEntries) {
  tests::CrateProject crate;
  ModelProject& project = crate.Project;
  SequenceEntry& spin = project.Sequences.At(0);
  for (const char* name : {"a", "b", "c"}) spin.AddCommand(name);
  spin.AddEvent({"e", "1", ""});
  project.Skins.Add({"wood"});
  EXPECT_EQ(RemoveProjectEntry(project, "Animation0/Command1"), std::nullopt);
  EXPECT_EQ(spin.commandCount, 2);
  EXPECT_EQ(spin.commands[1], "c");
  EXPECT_EQ(RemoveProjectEntry(project, "Animation0/Event0"), std::nullopt);
  EXPECT_EQ(spin.eventCount, 0);
  EXPECT_EQ(RemoveProjectEntry(project, "Skin0"), std::nullopt);
  EXPECT_EQ(project.Skins.Count(), 0);
  for (const char* missing : {"Skin0", "Animation1", "Animation0/Command2", "Animation1/Event0", "Model File", "x"}) {
    EXPECT_TRUE(RemoveProjectEntry(project, missing)) << missing;
  }
  EXPECT_EQ(RemoveProjectEntry(project, "Animation0"), std::nullopt);
  EXPECT_EQ(project.Sequences.Count(), 0);
}

}  // namespace
}  // namespace tarnwick::project
