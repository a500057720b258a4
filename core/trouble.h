#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnwick::core {

/// How bad a trouble is: a note is worth knowing, a warning casts doubt on the result, an error means that something
/// which was asked for is missing or wrong.
enum class Severity { Note, Warning, Error };

/// What went wrong, for whoever has to decide by it. Texts are for people and are never taken apart again.
enum class TroubleKind {
  Missing,     // a file, folder or program is not there
  Unreadable,  // it is there and cannot be read
  Unwritable,  // it cannot be created, filled or named
  Damaged,     // its content contradicts its format
  Unknown,     // a version, format or statement that the program does not know
  Mismatch,    // files that do not belong together
  Lost,        // something that the input holds and the output does not
  Refused,     // the request itself is wrong: a name, a value, a place outside the folder that was named
  Limit,       // more than a format or a job can hold
  Tool,        // a tool failed, or told an error of its own
  Stopped,     // the user ended the work
};

/// The picture of a message box.
enum class BoxIcon { None, Stop, Exclamation, Information, Question };

/// One thing that the user should know, as a value: told once, shown by each door in its own way.
struct Trouble {
  Severity Level = Severity::Error;
  TroubleKind Kind = TroubleKind::Damaged;
  std::string File = {};               // the file that it is about; empty for none
  std::optional<int64_t> Offset = {};  // the byte of that file at which it was found
  std::string Text = {};               // one sentence, without caption or line end
  std::string Caption = {};            // of the message box that shows it; empty: no box, a line of the log alone
  std::optional<BoxIcon> Icon = {};    // of that box, where it does not follow from Level
  std::string Details = {};            // the cause, behind Text and quieter; may be empty
  std::string Alike = {};              // Text less names and numbers, to count like troubles by; empty: Text

  bool operator==(const Trouble&) const = default;

  BoxIcon ShownIcon() const {
    if (Icon) return *Icon;
    if (Level == Severity::Note) return BoxIcon::Information;
    return Level == Severity::Warning ? BoxIcon::Exclamation : BoxIcon::Stop;
  }
  /// What like troubles have in common.
  const std::string& SharedText() const { return Alike.empty() ? Text : Alike; }
};

/// Where a room that knows no job and no window tells a trouble. Calls come from the thread that does the work.
class TroubleSink {
 public:
  virtual ~TroubleSink() = default;
  virtual void Tell(const Trouble& trouble) = 0;
};

}  // namespace tarnwick::core
