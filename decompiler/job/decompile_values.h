#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/file_source.h"
#include "core/file_store.h"
#include "core/trouble.h"
#include "core/work_queue.h"
#include "core/written_file.h"

namespace tarnwick::decompiler {

/// Reference files are written without weight lists.
inline constexpr uint32_t DecompileOptionUnweightedSmd = 1;
/// Root bones keep the rotation that the model holds; without it animations are turned back by 270 degrees about Z.
inline constexpr uint32_t DecompileOptionKeepRotations = 2;
/// Sources that the SDK's compiler takes as they are: every file straight in the output directory under a name of its
/// own, body groups, merged LOD blocks. Without it: the plain form, one `$model` line a model.
inline constexpr uint32_t DecompileOptionReadyToCompile = 4;
/// The physics file beside the model is left alone.
inline constexpr uint32_t DecompileOptionNoPhysics = 8;
/// Sources that are ready to compile are without animations; their script shows the first mesh at rest.
inline constexpr uint32_t DecompileOptionNoAnimations = 16;

/// How far a job has got, told as it goes on.
struct DecompileProgress {
  std::string File;   // the file that was begun last, as it will stand in the output directory
  int FilesDone = 0;  // written and named
  int FilesBegun = 0;
};

/// What is to be decompiled, and how. Two jobs can run side by side; they share nothing.
struct DecompileJob {
  std::string ModelPath;        // of the .mdl file
  std::string OutputDirectory;  // must exist; no separator is added or removed
  uint32_t Options = 0;         // DecompileOption bits

  /// Where the model and the files that go with it are read from; nothing: the disk.
  const core::FileSource* Files = nullptr;

  /// Takes what is written; nothing: the disk.
  core::FileMaker* Output = nullptr;

  /// Helps with formatting and writing the job's files; nothing: the calling thread does all.
  core::WorkQueue* Helpers = nullptr;
  /// Told of each file begun and done, from the job's own thread; may be empty.
  std::function<void(const DecompileProgress&)> Progress = {};
  /// Set by the caller to end the job at the next file; nothing more is begun then. May be nothing.
  const std::atomic<bool>* StopRequested = nullptr;
  /// Bytes that the job may write, so that a damaged model cannot fill a disk; 0 for the ordinary bound (see
  /// JobContext::Spend).
  int64_t OutputLimit = 0;
};

using core::WrittenFile;

/// A kind of thing that the model holds and its sources do not say, and how many of them.
struct LostKind {
  std::string Kind;  // in the plural, such as "unknown bone flags"
  int64_t Count = 0;

  bool operator==(const LostKind&) const = default;
};

/// What came of a job. The log and the boxes tell the same in words.
struct DecompileResult {
  bool Completed = false;               // the job came to its end; stages may have failed
  std::vector<WrittenFile> Files;       // in the order in which they were begun
  std::vector<core::Trouble> Troubles;  // in the order in which they were told
  std::vector<LostKind> Lost;           // ready to compile: in the order in which they were met; empty: complete

  /// The troubles of one kind of severity.
  std::vector<core::Trouble> Told(core::Severity level) const;
  /// Everything that the model holds is written.
  bool Succeeded() const { return Completed && Told(core::Severity::Error).empty(); }
};

}  // namespace tarnwick::decompiler
