#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/output_file.h"
#include "core/text_writer.h"
#include "core/work_queue.h"

namespace tarnwick::decompiler {

/// What became of one file of a batch.
struct FileOutcome {
  std::string Path;
  uint64_t Size = 0;
  uint64_t NonFinite = 0;  // infinities and not-a-numbers written
  std::string Error;       // why it could not be written; empty if it stands under its name
  bool Discarded = false;  // its writer gave it up
};

/// Files that are formatted and written side by side: each is filled by its own function on any thread and renamed
/// when it is whole. Only a few are open at a time.
class FileBatch {
 public:
  /// Writes a file's content. False gives the file up: nothing is left of it.
  using WriteFunction = std::function<bool(core::TextWriter&)>;

  /// `helpers` may be nothing: then each file is written at once by the caller.
  explicit FileBatch(core::WorkQueue* helpers) : m_helpers(helpers) {}
  ~FileBatch() { Finish(); }
  FileBatch(const FileBatch&) = delete;
  FileBatch& operator=(const FileBatch&) = delete;

  /// Adds a file. Waits, or helps, while too many are under way.
  void Add(core::OutputFile file, WriteFunction write);

  /// Files that are finished, of all that were added.
  int DoneCount() const { return *m_doneCount; }

  /// Waits until all files are finished, and gives their outcomes in the order in which they were added.
  std::vector<FileOutcome> Finish();

 private:
  struct Task;

  void FinishOldest();

  core::WorkQueue* m_helpers;
  std::shared_ptr<std::atomic<int>> m_doneCount = std::make_shared<std::atomic<int>>(0);
  std::deque<std::shared_ptr<Task>> m_underWay;
  std::vector<FileOutcome> m_outcomes;
};

}  // namespace tarnwick::decompiler
