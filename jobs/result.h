#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/trouble.h"
#include "core/written_file.h"
#include "decompiler/decompile_job.h"
#include "jobs/verification.h"

namespace tarnwick::jobs {

/// How a job judges one of its items.
enum class Verdict {
  Succeeded,  // done, with no error; there may be warnings
  Failed,     // at least one error
  Stopped,    // begun, and ended by the user before its end
  NotBegun,   // the job was stopped, or ended early, before its turn
};

/// A material or texture that a picture needed and that is not there, or cannot be used.
struct MissingContent {
  std::string Name = {};                // as a model or a material names it
  std::string NeededBy = {};            // the material; "" for a material itself
  std::string Reason = {};              // one sentence
  std::vector<std::string> Tried = {};  // the paths at which it was looked for

  bool operator==(const MissingContent&) const = default;
};

/// What became of one item of a job: of one model, script, project, image or texture.
struct ItemResult {
  std::string Input = {};   // as the user named it
  std::string Source = {};  // what the work read in its place (a project's script); else the same
  std::string Target = {};  // what it was to make: an output directory, a model, a texture, an image; "" if unknown
  std::string CommandLine = {};  // of the tool that ran; "" where none did
  std::string Shown = {};        // what a page shows of a tool's run and the work around it, by the rule of the tool
  std::string Notes = {};        // of that, what the program itself says of the run
  Verdict Judged = Verdict::NotBegun;
  std::vector<core::WrittenFile> Files = {};    // in the order in which they were begun
  std::vector<core::Trouble> Troubles = {};     // in the order in which they were told
  size_t MoreErrors = 0;                        // of a tool that told very many: those that are not in Troubles
  size_t MoreWarnings = 0;                      // the same
  std::vector<decompiler::LostKind> Lost = {};  // what the output does not say, though the input held it
  std::vector<MissingContent> Missing = {};     // of a picture
  std::optional<Verification> Verified = {};    // of a verification that came to its end
  double Seconds = 0;

  bool Succeeded() const { return Judged == Verdict::Succeeded; }
  /// How many troubles of that severity there were.
  size_t Count(core::Severity level) const;
  /// The first trouble of that severity; null if there is none.
  const core::Trouble* First(core::Severity level) const;
  /// The size of all its files.
  uint64_t Bytes() const;

  bool operator==(const ItemResult&) const = default;
};

/// What became of a job. Both doors judge by it and by nothing else.
struct JobResult {
  std::vector<ItemResult> Items = {};        // in the job's order, also those that were not begun
  std::vector<core::Trouble> Troubles = {};  // of the job as a whole, such as an input that is not there
  double Seconds = 0;

  /// Every item succeeded and nothing was wrong with the job as a whole.
  bool Succeeded() const;
  size_t Count(Verdict verdict) const;

  bool operator==(const JobResult&) const = default;
};

}  // namespace tarnwick::jobs
