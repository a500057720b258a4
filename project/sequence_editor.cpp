#include "project/sequence_editor.h"

#include "core/number_parse.h"
#include "core/number_text.h"
#include "project/project_keys.h"

namespace tarnwick::project {

namespace {

Refusal Warning(std::string text, std::string field) {
  return {core::BoxIcon::Exclamation, std::move(text), "Warning", std::move(field)};
}

Verdict CheckRoom(size_t rows, int32_t limit, std::string_view what) {
  if (rows < static_cast<size_t>(limit)) return std::nullopt;
  return Warning(
      "A sequence can hold " + std::to_string(limit) + " " + std::string(what) + ". Remove one before you add another",
      {});
}

/// What no project file could hold, before anything is taken.
Verdict CheckForm(const SequenceForm& form) {
  if (auto refused = CheckText("Animation Name", form.name)) return refused;
  if (auto refused = CheckText("Animation SMD", form.smdFile)) return refused;
  if (auto refused = CheckText("Activity Name", form.activity)) return refused;
  if (auto refused = CheckNumber("FPS", form.fps)) return refused;
  if (form.rotateDirection != 0) {
    if (auto refused = CheckNumber("Amount", form.rotateAmount)) return refused;
  }
  for (const std::string& command : form.commands) {
    if (auto refused = CheckSequenceCommand(command)) return refused;
  }
  for (const EventEntry& event : form.events) {
    if (auto refused = CheckEvent(event)) return refused;
  }
  if (form.commands.size() > MaximumCommands) return CheckRoomForCommand(form.commands.size());
  if (form.events.size() > MaximumEvents) return CheckRoomForEvent(form.events.size());
  return std::nullopt;
}

}  // namespace

SequenceForm ShowSequence(const SequenceEntry& entry) {
  SequenceForm form;
  form.name = entry.name;
  form.smdFile = entry.smdFile;
  form.fps = core::FixedText(entry.fps, 3);
  form.activity = entry.activity;
  if (!entry.activity.empty()) form.activityStrength = std::to_string(entry.activityStrength);
  form.rotateDirection = entry.rotateDirection;
  if (entry.rotateDirection != 0) form.rotateAmount = core::FixedText(entry.rotateAmount, 2);
  form.loop = entry.loop != 0;
  form.commands.assign(entry.Commands().begin(), entry.Commands().end());
  form.events.assign(entry.Events().begin(), entry.Events().end());
  return form;
}

Verdict TakeSequence(const SequenceForm& form, SequenceEntry& entry) {
  if (auto refused = CheckForm(form)) return refused;
  entry.name = form.name;
  if (entry.name.empty()) return Warning("All sequences must have a name", "Animation Name");
  entry.smdFile = form.smdFile;
  if (entry.smdFile.empty()) return Warning("All sequences must have a SMD", "Animation SMD");
  entry.activity = form.activity;
  if (!entry.activity.empty()) entry.activityStrength = core::ParseWhole(form.activityStrength);
  entry.loop = form.loop ? 1 : 0;
  entry.rotateDirection = form.rotateDirection;
  if (entry.rotateDirection != 0) entry.rotateAmount = core::ParseReal(form.rotateAmount);
  entry.SetEvents(form.events);
  entry.SetCommands(form.commands);
  entry.fps = core::ParseReal(form.fps);
  return std::nullopt;
}

Verdict CheckSequenceCommand(std::string_view text) {
  return CheckCommand(text, SequenceCommandQuote);
}

Verdict CheckEvent(const EventEntry& event) {
  if (auto refused = CheckText("Event Name/Number", event.name)) return refused;
  if (auto refused = CheckText("Animation Frame", event.frame)) return refused;
  return CheckText("Option", event.option);
}

Verdict CheckRoomForCommand(size_t rows) {
  return CheckRoom(rows, MaximumCommands, "commands");
}

Verdict CheckRoomForEvent(size_t rows) {
  return CheckRoom(rows, MaximumEvents, "events");
}

}  // namespace tarnwick::project
