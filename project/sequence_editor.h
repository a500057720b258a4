#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "project/field_rules.h"
#include "project/project_entries.h"

namespace tarnwick::project {

/// What the sequence editor shows: the texts of its fields and the rows of its two lists, a working copy.
struct SequenceForm {
  std::string name;
  std::string smdFile;
  std::string fps;
  std::string activity;
  std::string activityStrength;
  std::string rotateAmount;
  int32_t rotateDirection = 0;  // selected index
  bool loop = false;
  std::vector<std::string> commands;
  std::vector<EventEntry> events;
};

/// The editor's fields for an entry. The strength stays empty without an activity, the amount without a direction.
SequenceForm ShowSequence(const SequenceEntry& entry);

/// The editor's OK: takes the form into the entry. If that is refused the editor stays open; the entry then holds the
/// fields up to the refused one, which is why the caller shows the entry anew in any case. Without an activity the old
/// strength stays, without a direction the old amount. Texts that are no numbers read as 0.
Verdict TakeSequence(const SequenceForm& form, SequenceEntry& entry);

/// Whether a command may become a row of the list. (An empty one is no row either: OK with an empty text changes
/// nothing, without a box.)
Verdict CheckSequenceCommand(std::string_view text);
/// Whether an event may become a row; all three texts may be empty.
Verdict CheckEvent(const EventEntry& event);

/// Whether a list that has `rows` rows takes one more: asked before the editor of the new row opens.
Verdict CheckRoomForCommand(size_t rows);
Verdict CheckRoomForEvent(size_t rows);

}  // namespace tarnwick::project
