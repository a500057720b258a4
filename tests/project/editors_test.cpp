#include <gmock/gmock.h>

#include "project/entry_editors.h"
#include "project/field_rules.h"
#include "project/sequence_editor.h"

namespace tarnwick::project {
namespace {

using testing::HasSubstr;

SequenceForm SoundForm() {
  SequenceForm form;
  form.name = "walk";
  form.smdFile = "walk.smd";
  form.fps = "24.5";
  form.activity = "ACT_WALK";
  form.activityStrength = "3x";
  form.rotateAmount = "45";
  return form;
}

void ExpectRefused(const Verdict& verdict, core::BoxIcon icon, const char* caption, const char* text) {
  ASSERT_TRUE(verdict) << text;
  EXPECT_EQ(verdict->Icon, icon);
  EXPECT_EQ(verdict->Caption, caption);
  EXPECT_EQ(verdict->Text, text);
}

TEST(SequenceEditor, TakesTheFieldsAndLeavesUnusedAmountsAlone) {
  SequenceEntry entry;
  entry.rotateAmount = 90;
  SequenceForm form = SoundForm();
  form.loop = true;
  form.commands = {"snap", "fadein \"1\""};
  form.events = {{"", "", ""}};
  EXPECT_FALSE(TakeSequence(form, entry));
  EXPECT_EQ(entry.fps, 24.5);
  EXPECT_EQ(entry.activityStrength, 3);
  EXPECT_EQ(entry.rotateAmount, 90);  // there is no direction
  EXPECT_EQ(entry.loop, 1);
  EXPECT_EQ(entry.commandCount, 2);
  EXPECT_EQ(entry.eventCount, 1);
  form.activity.clear();
  form.activityStrength = "9";
  form.rotateDirection = 1;
  form.fps = "fast";
  EXPECT_FALSE(TakeSequence(form, entry));
  EXPECT_EQ(entry.activityStrength, 3);
  EXPECT_EQ(entry.rotateAmount, 45);
  EXPECT_EQ(entry.fps, 0);
}

TEST(SequenceEditor, ShowsAnEntry) {
  SequenceEntry entry;
  entry.activityStrength = 4;
  entry.rotateAmount = 90;
  entry.AddCommand("snap");
  SequenceForm form = ShowSequence(entry);
  EXPECT_EQ(form.fps, "30.000");
  EXPECT_EQ(form.activityStrength, "");
  EXPECT_EQ(form.rotateAmount, "");
  EXPECT_EQ(form.commands, std::vector<std::string>{"snap"});
  entry.activity = "ACT_IDLE";
  entry.rotateDirection = 1;
  form = ShowSequence(entry);
  EXPECT_EQ(form.activityStrength, "4");
  EXPECT_EQ(form.rotateAmount, "90.00");
}

TEST(SequenceEditor, StaysOpenForWantOfNameOrSmd) {
  SequenceEntry entry;
  SequenceForm form = SoundForm();
  form.smdFile.clear();
  ExpectRefused(TakeSequence(form, entry), core::BoxIcon::Exclamation, "Warning", "All sequences must have a SMD");
  EXPECT_EQ(entry.name, "walk");  // set up to that point
  EXPECT_EQ(entry.activity, "");
  form.name.clear();
  ExpectRefused(TakeSequence(form, entry), core::BoxIcon::Exclamation, "Warning", "All sequences must have a name");
}

TEST(SequenceEditor, RefusesWhatAProjectFileCannotHold) {
  SequenceEntry entry;
  SequenceForm form = SoundForm();
  form.name = "a\"b";
  const Verdict quote = TakeSequence(form, entry);
  ASSERT_TRUE(quote);
  EXPECT_EQ(quote->Field, "Animation Name");
  EXPECT_EQ(entry.name, "");
  EXPECT_TRUE(CheckEvent({"", "", "\""}));
  EXPECT_TRUE(CheckSequenceCommand("a@b"));
  EXPECT_TRUE(CheckSequenceCommand("a\nb"));
  EXPECT_FALSE(CheckSequenceCommand("\"~\""));
  EXPECT_TRUE(CheckQcCommand({"a~b"}));
  EXPECT_FALSE(CheckQcCommand({"\"@\""}));
  EXPECT_FALSE(CheckRoomForCommand(19));
  EXPECT_FALSE(CheckRoomForEvent(19));
  EXPECT_THAT(CheckRoomForCommand(20)->Text, HasSubstr("20 commands"));
  EXPECT_THAT(CheckRoomForEvent(20)->Text, HasSubstr("20 events"));
  form = SoundForm();
  form.events.resize(21);
  EXPECT_TRUE(TakeSequence(form, entry));
  EXPECT_EQ(entry.name, "");
}

TEST(EntryEditors, AskForWhatAnEntryNeeds) {
  const auto expectError = [](const Verdict& verdict, const char* text) {
    ExpectRefused(verdict, core::BoxIcon::Stop, "Error", text);
  };
  AttachmentEntry attachment;
  expectError(CheckAttachment(attachment), "Must specify name for all attachments");
  EXPECT_EQ(attachment.translation, "0 0 0");
  EXPECT_EQ(attachment.rotation, "0 0 0");
  attachment.name = "eyes";
  expectError(CheckAttachment(attachment), "Must specify bone for all attachments");
  attachment.bone = "head";
  EXPECT_FALSE(CheckAttachment(attachment));
  attachment.rotation = "0 \"0\" 0";
  EXPECT_EQ(CheckAttachment(attachment)->Field, "Rotation");
  expectError(CheckLod({"", ""}), "Must specify LOD file name");
  expectError(CheckLod({"a.smd", ""}), "Must specify LOD Distance");
  EXPECT_FALSE(CheckLod({"a.smd", "far"}));
  expectError(CheckSkin({""}), "Must specify skin file name");
  EXPECT_TRUE(CheckSkin({"\""}));
  EXPECT_FALSE(CheckGib({"", "", ""}));
  EXPECT_EQ(CheckGib({"", "\"", ""})->Field, "Health");
  EXPECT_FALSE(CheckQcCommand({""}));
}

TEST(EntryEditors, TakeTheModelOptionsAllOrNone) {
  ModelOptions options;
  ModelOptionsForm form = ShowModelOptions(options);
  EXPECT_EQ(form.scale, "1.00");
  EXPECT_EQ(form.mass, "100.00");
  form.scale = "2.5 metres";
  form.mass = std::string(99, ' ') + "12";  // cut behind the first digit
  form.surfaceProp = "a\"b";
  EXPECT_TRUE(TakeModelOptions(form, options));
  EXPECT_EQ(options, ModelOptions());
  form.surfaceProp = "wood";
  EXPECT_FALSE(TakeModelOptions(form, options));
  EXPECT_EQ(options.scale, 2.5);
  EXPECT_EQ(options.mass, 1);
  EXPECT_EQ(options.surfaceProp, "wood");
}

TEST(EntryEditors, RefuseANumberThatTwoDecimalsMakeNothing) {
  ModelOptions options;
  ModelOptionsForm form = ShowModelOptions(options);
  for (const char* scale : {"0.001", "-0.004", "inf"}) {
    form.scale = scale;
    const Verdict refused = TakeModelOptions(form, options);
    ASSERT_TRUE(refused) << scale;
    EXPECT_EQ(refused->Field, "Scale");
  }
  EXPECT_EQ(options.scale, 1.0);
  for (const char* scale : {"0", "0.006", "-2", "none"}) {
    form.scale = scale;
    EXPECT_FALSE(TakeModelOptions(form, options)) << scale;
  }
}

TEST(FieldRules, FollowTheModelTypeForTheSequenceControls) {
  const auto expect = [](int32_t type, bool use, bool checked, bool enabled, bool list) {
    const SequenceControls controls = SequenceControlsFor(type, use);
    EXPECT_EQ(controls.UseReferenceChecked, checked);
    EXPECT_EQ(controls.UseReferenceEnabled, enabled);
    EXPECT_EQ(controls.ListEnabled, list);
  };
  expect(0, false, true, false, false);
  expect(0, true, true, false, false);
  expect(1, true, true, true, false);
  expect(4, false, false, true, true);
}

}  // namespace
}  // namespace tarnwick::project
