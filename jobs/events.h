#pragma once

#include <cstddef>
#include <string>
#include <variant>

#include "core/trouble.h"
#include "jobs/result.h"
#include "tools/output_lines.h"

namespace tarnwick::jobs {

/// Stands for an item's number where something is about the job as a whole.
inline constexpr size_t NoItem = static_cast<size_t>(-1);

/// The job knows what it has to do: `Count` items, told by their numbers from here on.
struct Started {
  size_t Count = 0;
  bool operator==(const Started&) const = default;
};

/// An item is at hand. Several may be at once.
struct ItemStarted {
  size_t Item = 0;
  std::string Input;   // as the user named it
  std::string Target;  // what is to be made; "" if that is not known yet
  bool operator==(const ItemStarted&) const = default;
};

/// Whose words a line holds.
enum class LineSource {
  Log,      // the program's own
  Command,  // the command line of a tool that starts now
  Tool,     // what the tool prints
};

/// One line. Its text keeps the line end as it came (none where the output ended, or the line was too long for one
/// piece), so that the texts in a row are the output to the byte. For people only: no host takes it apart.
struct Line {
  size_t Item = NoItem;
  LineSource Source = LineSource::Log;
  tools::LineKind Kind = tools::LineKind::Plain;
  std::string Text;
  bool operator==(const Line&) const = default;
};

/// A trouble, which also stands in the item's or the job's result.
struct Told {
  size_t Item = NoItem;
  core::Trouble Trouble;
  bool operator==(const Told&) const = default;
};

/// How far an item has got.
struct Progress {
  size_t Item = 0;
  std::string File;  // at hand, as it will stand below the target
  size_t Done = 0;   // files, or whatever the job counts
  size_t Begun = 0;  // as many are begun; 0 where nothing is counted
  bool operator==(const Progress&) const = default;
};

/// An item has come to its end, good or bad.
struct ItemFinished {
  size_t Item = 0;
  ItemResult Result;
  bool operator==(const ItemFinished&) const = default;
};

/// The last event of a job.
struct Finished {
  JobResult Result;
  bool operator==(const Finished&) const = default;
};

/// What a job tells its host. Of one item: ItemStarted, then any of Line, Told and Progress, then ItemFinished.
using Event = std::variant<Started, ItemStarted, Line, Told, Progress, ItemFinished, Finished>;

/// What a question is about, for a host that answers by rule.
enum class QuestionKind {
  MakeDirectory,  // a directory that is needed does not exist
  NoDirectory,    // none is named; go on with the default one
  Overwrite,      // files stand where the job is to write
  UseDamaged,     // an input is damaged; use what can be read of it
  SameTarget,     // two inputs become one file, the later over the earlier
};

/// A question with two answers: to go on, or not.
struct Question {
  QuestionKind Kind = QuestionKind::Overwrite;
  std::string Text = {};
  std::string Caption = {};
  std::string Details = {};  // a second, quieter paragraph; may be empty
  std::string Yes = {};      // the words on the button that goes on; "" for "OK"
  core::BoxIcon Icon = core::BoxIcon::Exclamation;
  bool Assumed = false;    // what a host answers that cannot ask
  std::string About = {};  // a no is not asked for again about the same; "": by the text
  bool operator==(const Question&) const = default;
};

/// Joins lambdas to a visitor of events: std::visit(Overloaded{[](const Line&) {...}, [](const auto&) {}}, event).
template <typename... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <typename... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

}  // namespace tarnwick::jobs
