#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::project {

/// What a file held that a store could not take as it stands.
struct ProfileLoadNotes {
  std::vector<int32_t> DamagedLines;  // numbers, from 1, of lines that are not of the form "key" "value"
  int32_t EmptyLine = 0;              // number of the empty line that ended the reading with text behind it, or 0
  int32_t LinesBehindIt = 0;          // lines behind that one, which were not read
};

/// A map of text keys to text values, sorted by the bytes of the keys, that lives in memory between a project and its
/// file. A key is made of two to four names joined by "/": section and key, section, group and key, or section, group,
/// sub-group and key.
///
/// The file has one entry a line in the map's order: "key" "value", both in quotes. Nothing is escaped: a key or a
/// value that holds a double quote or a line break cannot be in a file.
class ProfileStore {
 public:
  using Text = std::string_view;

  /// Set a value, over an older one of that key.
  void SetString(Text section, Text key, Text value);
  void SetString(Text section, Text group, Text key, Text value);
  void SetString(Text section, Text group, Text subgroup, Text key, Text value);
  /// Likewise, with the number as text.
  void SetInt(Text section, Text key, int32_t value);
  void SetInt(Text section, Text group, Text key, int32_t value);
  void SetInt(Text section, Text group, Text subgroup, Text key, int32_t value);

  /// The value of a key, or `defaultText` if the key is absent.
  std::string GetString(Text section, Text key, Text defaultText) const;
  std::string GetString(Text section, Text group, Text key, Text defaultText) const;
  std::string GetString(Text section, Text group, Text subgroup, Text key, Text defaultText) const;
  /// The whole number at the start of the value of a key (0 if there is none), or `defaultValue` if the key is absent.
  int32_t GetInt(Text section, Text key, int32_t defaultValue) const;
  int32_t GetInt(Text section, Text group, Text key, int32_t defaultValue) const;
  int32_t GetInt(Text section, Text group, Text subgroup, Text key, int32_t defaultValue) const;

  /// Replaces everything in the store by the entries of the file at `path`, which may have either kind of line end.
  /// Reading ends at the first empty line; of a damaged line the store gets what the scan for quotes finds. False, with
  /// the store as it was, if the file cannot be read; then `reason`, if given, tells why in the system's words.
  /// `notes`, if given, takes what the user should know of a damaged file.
  bool LoadFile(const std::string& path, std::string* reason = nullptr, ProfileLoadNotes* notes = nullptr);
  /// The same from text in memory.
  void LoadText(Text text, ProfileLoadNotes* notes = nullptr);

  /// Writes all entries to the file at `path`, in one step over an older file. False, with the older file untouched,
  /// if that fails or an entry cannot be in a file; then `reason`, if given, tells why.
  bool SaveFile(const std::string& path, std::string* reason = nullptr) const;

  void Clear() { m_entries.clear(); }

  /// All entries by their joined keys.
  const std::map<std::string, std::string, std::less<>>& Entries() const { return m_entries; }

 private:
  std::map<std::string, std::string, std::less<>> m_entries;
};

}  // namespace tarnwick::project
