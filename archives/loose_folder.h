#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::archives {

/// A folder on the disk in which files are found without regard to ASCII case and slash. What a folder lists is read
/// once and kept until `Refresh`, so that looking for a file again costs no call of the system. Several threads may
/// look at once.
class LooseFolder {
 public:
  struct Entry {
    std::string Name;  // as the disk has it
    bool IsFolder = false;
  };
  using Listing = std::vector<Entry>;  // sorted by folded name; of equal ones as the disk sorts them

  explicit LooseFolder(std::string path) : m_path(std::move(path)) {}

  const std::string& Path() const { return m_path; }

  /// The path of the file of that name (in the form of `PlainName`) below the folder. A `..` finds nothing.
  std::optional<std::string> Find(std::string_view name) const;
  /// What the folder of that name lists ("" for this one); where the disk has several that differ in case, all of it.
  Listing List(std::string_view folder) const;
  /// Forgets the listings.
  void Refresh();

 private:
  struct FoldedLess;
  std::shared_ptr<const Listing> Listed(const std::string& path) const;
  void Search(const std::string& folder, std::string_view rest, bool wantFolder, std::vector<std::string>& found) const;

  const std::string m_path;
  mutable std::mutex m_lock;
  mutable std::map<std::string, std::shared_ptr<const Listing>> m_listings;  // by path
};

}  // namespace tarnwick::archives
