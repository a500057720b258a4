#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick::project {

/// An ordered list of a project. The order is that of adding; it is also the order of printing, of numbering in the
/// project file, and of the rows on the page, so a page acts on row `i` with `At(i)` and `RemoveAt(i)`. Names need not
/// be unique.
///
/// `Key` is the field by which entries are found. A reference to an entry is good until the list changes.
template <typename Entry, std::string Entry::*Key>
class EntryList {
 public:
  int32_t Count() const { return static_cast<int32_t>(m_entries.size()); }

  /// The entry at `index`, which must be in range.
  Entry& At(int32_t index) { return m_entries[static_cast<size_t>(index)]; }
  const Entry& At(int32_t index) const { return m_entries[static_cast<size_t>(index)]; }

  /// Appends.
  void Add(Entry entry) { m_entries.push_back(std::move(entry)); }

  /// The index of the first entry whose key field is exactly `name`, or -1.
  int32_t Find(std::string_view name) const {
    for (size_t i = 0; i < m_entries.size(); ++i) {
      if (m_entries[i].*Key == name) return static_cast<int32_t>(i);
    }
    return -1;
  }

  /// Removes the entry at `index`, which must be in range, and closes the gap.
  void RemoveAt(int32_t index) { m_entries.erase(m_entries.begin() + index); }

  void Clear() { m_entries.clear(); }

  auto begin() { return m_entries.begin(); }
  auto end() { return m_entries.end(); }
  auto begin() const { return m_entries.begin(); }
  auto end() const { return m_entries.end(); }

  bool operator==(const EntryList&) const = default;

 private:
  std::vector<Entry> m_entries;
};

}  // namespace tarnwick::project
