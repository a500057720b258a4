#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace tarnwick::core {

/// Reads what stands in one folder, whose path may be of any length, entry by entry in the system's order:
///
///     FolderReader entries(NativePath(folder));
///     while (entries.Next()) Use(entries.Name());
class FolderReader {
 public:
  /// A path as the system has it. To make one of the library's paths of a text costs more than to read a small folder.
  using NativeText = std::filesystem::path::string_type;

  /// Opens `folder`; "" is the current one. Where it cannot be opened, Error() tells why and there is no entry.
  explicit FolderReader(const std::filesystem::path& folder) : FolderReader(folder.native()) {}
  explicit FolderReader(const NativeText& folder);
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;
  ~FolderReader();

  /// Goes to the next entry, at first to the first; "." and ".." are none. False behind the last, or where the folder
  /// cannot be read on. What follows is about this entry.
  bool Next();
  /// What kept the folder from being read, or nothing.
  const std::error_code& Error() const { return m_error; }

  std::string Name() const;
  /// The folder as it was given, and the name.
  std::filesystem::path Path() const { return Native(); }
  NativeText Native() const;
  /// The same for people and for functions that take text.
  std::string Text() const;
  /// Whether it is a folder, or a link to one.
  bool IsFolder() const;
  /// Whether it is a regular file, or a link to one.
  bool IsFile() const;
  bool IsLink() const;
  /// Of a file, in bytes; 0 if it cannot be told.
  uint64_t Size() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
  std::error_code m_error;
};

/// A file that stands in a folder or below it.
struct FileBelow {
  std::string Path;   // with the folder as it was given
  std::string Below;  // with the system's separators, without that folder
};

/// The files in `folder` whose names `wants` takes, and if `recursive` those in all folders below. Links to folders are
/// not followed, and folders that may not be read are left out; what else keeps a folder from being read ends the
/// search and is told in `error`. The order is any. Where there are many folders several threads read them, and ask
/// `wants` at once.
std::vector<FileBelow> FilesBelow(const std::filesystem::path& folder, bool recursive,
                                  const std::function<bool(std::string_view)>& wants, std::error_code& error);

/// Removes `folder` with all that is in it, of any length of path; links are removed, not followed. What cannot be
/// removed stays.
void RemoveFolder(const std::filesystem::path& folder);

}  // namespace tarnwick::core
