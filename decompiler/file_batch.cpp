#include "decompiler/file_batch.h"

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
  FileOutcome Outcome;
  bool Claimed = false;   // guarded by the batch's lock
  bool Finished = false;  // guarded by the batch's lock

  void Run() {
    Outcome.Path = File.Path();
    {
      core::TextWriter writer(File);
      Outcome.Discarded = !Write(writer);
      writer.Flush();
      Outcome.NonFinite = writer.NonFiniteCount();
    }
    if (Outcome.Discarded) {
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
  if (m_helpers == nullptr) {
    task->Run();
    m_outcomes.push_back(std::move(task->Outcome));
    const std::lock_guard lock(m_lock);
    ++m_doneCount;
    return;
  }
  m_underWay.push_back(task);
  m_helpers->Post([this, task] {
    {
      const std::lock_guard lock(m_lock);
      if (std::exchange(task->Claimed, true)) return;
    }
    task->Run();
    const std::lock_guard lock(m_lock);
    task->Finished = true;
    ++m_doneCount;
    m_done.notify_all();
  });
  while (m_underWay.size() >= MostUnderWay) FinishOldest();
}

void FileBatch::FinishOldest() {
  const std::shared_ptr<Task> task = m_underWay.front();
  m_underWay.pop_front();
  {
    std::unique_lock lock(m_lock);
    if (std::exchange(task->Claimed, true)) {
      m_done.wait(lock, [&] { return task->Finished; });
      m_outcomes.push_back(std::move(task->Outcome));
      return;
    }
  }
  task->Run();
  m_outcomes.push_back(std::move(task->Outcome));
  const std::lock_guard lock(m_lock);
  task->Finished = true;
  ++m_doneCount;
}

int FileBatch::DoneCount() {
  const std::lock_guard lock(m_lock);
  return m_doneCount;
}

std::vector<FileOutcome> FileBatch::Finish() {
  while (!m_underWay.empty()) FinishOldest();
  return std::exchange(m_outcomes, {});
}

}  // namespace tarnwick::decompiler
