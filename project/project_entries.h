#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick::project {

/// Commands, and events, that one sequence can hold.
inline constexpr int32_t MaximumCommands = 20;
inline constexpr int32_t MaximumEvents = 20;

/// The directions of `SequenceEntry::rotateDirection`.
inline constexpr std::array<std::string_view, 2> RotateDirections = {"NONE", "RZ"};

/// One event of a sequence.
struct EventEntry {
  std::string name;    // event name or number
  std::string frame;   // animation frame
  std::string option;  // may stay empty

  bool operator==(const EventEntry&) const = default;
};

/// One $sequence of the project.
struct SequenceEntry {
  std::string name;
  std::string smdFile;
  int32_t rotateDirection = 0;  // index into RotateDirections
  double rotateAmount = 0.0;    // printed while rotateDirection is not 0
  std::string activity;         // such as "ACT_IDLE"
  int32_t activityStrength = 0;
  double fps = 30.0;
  int32_t loop = 0;  // 0 or not
  std::array<std::string, MaximumCommands> commands;
  int32_t commandCount = 0;
  std::array<EventEntry, MaximumEvents> events;
  int32_t eventCount = 0;

  /// The used commands and events.
  std::span<const std::string> Commands() const;
  std::span<const EventEntry> Events() const;

  /// Appends a command or an event. False, with nothing changed, if there is no room for it.
  bool AddCommand(std::string command);
  bool AddEvent(EventEntry event);

  /// Takes the rows of an editor. False, with nothing changed, if there are more than the entry can hold.
  bool SetCommands(std::span<const std::string> rows);
  bool SetEvents(std::span<const EventEntry> rows);

  /// Whether all fields and all used commands and events are equal.
  bool operator==(const SequenceEntry& other) const;
};

/// A point on a bone to which other models are attached.
struct AttachmentEntry {
  std::string name;
  std::string bone;
  std::string translation;  // three numbers with blanks between them
  std::string rotation;     // likewise

  bool operator==(const AttachmentEntry&) const = default;
};

/// A piece that the model breaks into.
struct GibEntry {
  std::string model;
  std::string health;
  std::string fadeTime;

  bool operator==(const GibEntry&) const = default;
};

/// The mesh that stands for the reference mesh beyond a distance.
struct LodEntry {
  std::string smdFile;
  std::string distance;  // printed unchanged

  bool operator==(const LodEntry&) const = default;
};

/// A material of the model's skin family.
struct SkinEntry {
  std::string skin;

  bool operator==(const SkinEntry&) const = default;
};

/// A whole line of QC as the user typed it.
struct QcCommandEntry {
  std::string command;

  bool operator==(const QcCommandEntry&) const = default;
};

}  // namespace tarnwick::project
