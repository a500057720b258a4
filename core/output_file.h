#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::core {

/// A name beside `path` that no other file of this or another process uses, without regard to how long its own is.
std::filesystem::path::string_type TemporaryName(const std::filesystem::path::string_type& path);

/// What takes the bytes of an OutputFile in place of the disk. One that goes away uncommitted leaves nothing.
class OutputTarget {
 public:
  virtual ~OutputTarget() = default;
  /// Takes more bytes. False, with the reason in `error`, if they cannot be had.
  virtual bool Write(std::string_view bytes, std::string& error) = 0;
  /// Gives what was written its name. False, with the reason in `error`, if that cannot be done.
  virtual bool Commit(std::string& error) = 0;
};

/// A file being written under a temporary name beside its place. `Commit` gives it its name, over an older file of
/// that name; until then the older file is untouched, and an object that goes away uncommitted leaves nothing behind.
/// The new file gets the permissions of the older one, and where `path` is a symbolic link, the file that it points to
/// is the one replaced.
///
///     auto file = OutputFile::Create("out/hair.smd");
///     if (!file) ...                                 // cannot be created: say so
///     file->Write("version 1\n");
///     if (!file->Commit()) show(file->Error());      // disk full, or the name could not be given
class OutputFile {
 public:
  /// Begins the file that will stand at `path` (either slash is taken). Nothing if no file can be made there (no such
  /// folder, no right, a folder of that name, an older file that may not be written); then `reason`, if given, tells
  /// why in the system's words.
  [[nodiscard]] static std::optional<OutputFile> Create(std::string path, std::string* reason = nullptr);

  /// Begins a file that is known as `path` and stands at `place`, in a folder that nobody looks into yet: where its
  /// name is free it has it from the start.
  [[nodiscard]] static std::optional<OutputFile> CreateApart(std::string path, std::string place,
                                                             std::string* reason = nullptr);

  /// A file whose bytes go to `target`.
  OutputFile(std::string path, std::unique_ptr<OutputTarget> target);

  OutputFile(OutputFile&& other) noexcept;
  OutputFile& operator=(OutputFile&& other) noexcept;
  ~OutputFile();

  /// Appends bytes. After a failure nothing more is written and `Error` says why.
  bool Write(std::string_view bytes);

  /// Closes the file and gives it its name. False, with the temporary file removed, if any write failed or the
  /// name could not be given.
  [[nodiscard]] bool Commit();

  /// Removes what was written so far. The older file, if any, stays as it was.
  void Discard();

  const std::string& Path() const { return m_path; }
  /// The name of the file until `Commit`, for another program that is to write its contents; empty where it is not on
  /// the disk.
  std::filesystem::path TemporaryPath() const { return m_temporaryPath; }
  /// Bytes written so far.
  uint64_t Size() const { return m_size; }
  /// Why a write or the commit failed, in the system's words; empty if nothing failed.
  const std::string& Error() const { return m_error; }

 private:
  using NativeText = std::filesystem::path::string_type;  // which a path takes apart whenever it is made

  OutputFile() = default;
  bool Fail(std::string reason);

  std::string m_path;
  NativeText m_target;         // the file to be replaced: m_path, or what the link there points to; empty: none is
  NativeText m_temporaryPath;  // beside m_target; the file's own name where none is replaced
  std::unique_ptr<OutputTarget> m_held;  // in place of the disk
  std::string m_error;
  uint64_t m_size = 0;
  int m_descriptor = -1;
};

}  // namespace tarnwick::core
