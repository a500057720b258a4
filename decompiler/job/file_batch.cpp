#include "decompiler/job/file_batch.h"

#include <condition_variable>
#include <mutex>
#include <new>
#include <utility>

namespace tarnwick::decompiler {

namespace {

/// Files under way at a time. Enough to keep many cores busy, few enough to bound memory and open files.
constexpr size_t MostUnderWay = 64;

}  // namespace

struct FileBatch::Task {
  Task(core::OutputFile file, WriteFunction write) : File(std::move(file)), Write(std::move(write)) {}

  core::OutputFile File;
  WriteFunction Write;
  uint64_t Posted = 0;  // its number among the helpers' tasks
  FileOutcome Outcome;
  std::atomic<bool> Claimed = false;
  std::mutex Lock;
  std::condition_variable Done;
  bool Finished = false;  // guarded by Lock

  /// Writes the file, unless another thread has begun to.
  void RunOnce(std::atomic<int>& doneCount) {
    if (Claimed.exchange(true)) return;
    Run();
    ++doneCount;
    const std::lock_guard lock(Lock);
    Finished = true;
    Done.notify_all();
  }

  void Wait() {
    std::unique_lock lock(Lock);
    Done.wait(lock, [this] { return Finished; });
  }

  bool IsFinished() {
    const std::lock_guard lock(Lock);
    return Finished;
  }

 private:
  void Run() {
    Outcome.Path = File.Path();
    try {
      core::TextWriter writer(File);
      Outcome.Discarded = !Write(writer);
      writer.Flush();
      Outcome.NonFinite = writer.NonFiniteCount();
    } catch (const std::bad_alloc&) {
      Outcome.Error = "memory ran out";
    }
    if (Outcome.Discarded || !Outcome.Error.empty()) {
      File.Discard();
    } else if (!File.Commit()) {
      Outcome.Error = File.Error();
    }
    Outcome.Size = File.Size();
    Write = nullptr;
  }
};

void FileBatch::Add(core::OutputFile file, WriteFunction write) {
  auto task = std::make_shared<Task>(std::move(file), std::move(write));
  // A helper may come to the task when the batch is gone; by then the task is claimed, and all it touches is shared.
  if (m_helpers != nullptr) task->Posted = m_helpers->Post([task, done = m_doneCount] { task->RunOnce(*done); });
  m_underWay.push_back(std::move(task));
  const size_t most = m_helpers == nullptr ? 1 : MostUnderWay;
  while (m_underWay.size() >= most) FinishOldest();
}

void FileBatch::FinishOldest() {
  const std::shared_ptr<Task> task = std::move(m_underWay.front());
  m_underWay.pop_front();
  task->RunOnce(*m_doneCount);
  // While a helper is busy with it, the next ones are written here instead of waiting.
  for (const auto& next : m_underWay) {
    if (task->IsFinished()) break;
    next->RunOnce(*m_doneCount);
  }
  task->Wait();
  if (m_helpers != nullptr) m_helpers->Withdraw(task->Posted);
  m_outcomes.push_back(std::move(task->Outcome));
}

std::vector<FileOutcome> FileBatch::Finish() {
  while (!m_underWay.empty()) FinishOldest();
  return std::exchange(m_outcomes, {});
}

}  // namespace tarnwick::decompiler
