#pragma once

#include <set>
#include <string>
#include <string_view>

namespace tarnwick::decompiler {

/// Whether `name`, set behind the output directory and a separator, stays inside that directory: no component of it
/// is "..". Both slashes separate.
[[nodiscard]] bool StaysInside(std::string_view name);

/// The part of `name` behind its last slash or backslash, with each character that some file system refuses replaced
/// by "_": control characters, <>:"|?*, dots and blanks at the end, and the first character of a device name of
/// Windows (con, nul, com1, ...). "_" for an empty name. Bytes above 127 stay.
[[nodiscard]] std::string CleanFileName(std::string_view name);

/// What two names in the output directory have in common if they may mean one file: small letters, since the files go
/// to Windows too, and slashes for backslashes.
[[nodiscard]] std::string FileKey(std::string_view name);

/// The file names that a job has given out. Two names that differ in case only are the same, since the files go to
/// Windows too.
class OutputNames {
 public:
  /// Gives the clean form of `stem` + `extension` if it is free, else the first free of stem_2, stem_3, ... with the
  /// extension. The result, without a folder, is taken from then on. `extension` holds its full stop.
  [[nodiscard]] std::string Take(std::string_view stem, std::string_view extension);

  /// Whether `Take` would give `name`, which is clean, as it stands.
  bool IsFree(std::string_view name) const;

  /// Takes `name` out of what `Take` may give.
  void Reserve(std::string_view name);

 private:
  std::set<std::string> m_taken;  // in small letters
};

}  // namespace tarnwick::decompiler
