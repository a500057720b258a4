#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "core/file_store.h"

namespace tarnwick::core {

/// How many bytes several stores may hold in memory together.
class MemoryBudget {
 public:
  explicit MemoryBudget(int64_t bytes) : m_left(bytes) {}

  /// Takes `bytes` out of what is left. False, with nothing taken, if that is less.
  [[nodiscard]] bool Take(int64_t bytes);
  void GiveBack(int64_t bytes) { m_left += bytes; }
  int64_t Left() const { return m_left; }

 private:
  std::atomic<int64_t> m_left;
};

/// Files in memory, which go away with the store. What a budget has no room for lies on the disk meanwhile, in a folder
/// that the store asks for when it first needs one; nobody who reads can tell the difference.
///
/// A path is what it says, without links: "a//b", "a\b" and "a/./c/../b" are one file. Letters' case tells files apart.
class MemoryStore : public FileStore {
 public:
  /// Gives an empty folder on the disk, for files of any name; "" with a reason if there is none. It outlives the
  /// store.
  using Overflow = std::function<std::string(std::string& reason)>;

  MemoryStore(MemoryBudget& budget, Overflow overflow) : m_budget(budget), m_overflow(std::move(overflow)) {}
  MemoryStore(const MemoryStore&) = delete;
  MemoryStore& operator=(const MemoryStore&) = delete;

  std::optional<FileImage> Read(const std::string& name, std::string* reason = nullptr) const override;
  bool ReadStart(const std::string& name, std::span<std::byte> out) const override;
  bool Holds(const std::string& name) const override;
  std::optional<std::string> FindBeside(const std::string& name) const override;

  std::optional<OutputFile> Create(std::string path, std::string* reason = nullptr) override;
  std::string MakeFolder(const std::string& path) override;
  std::string Remove(const std::string& path) override;
  bool HoldsFolder(const std::string& path) const override;
  std::vector<std::string> NamesIn(const std::string& folder, size_t most) const override;
  std::vector<std::string> FilesBelow(const std::string& folder) const override;
  bool LiesIn(const std::string& path, const std::string& folder) const override;

 private:
  class Content;
  class Target;

  std::shared_ptr<const Content> Find(const std::string& name, std::string* reason) const;
  std::optional<OutputFile> CreateOverflow(std::string& reason);

  MemoryBudget& m_budget;
  const Overflow m_overflow;
  mutable std::mutex m_lock;
  std::map<std::string, std::shared_ptr<const Content>> m_files;  // by the path as PlainPath has it
  std::set<std::string> m_folders;                                // that were made, the same; the current one is there
  std::string m_overflowFolder;                                   // "" before it is needed
  size_t m_overflowFiles = 0;
};

}  // namespace tarnwick::core
