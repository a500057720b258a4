#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/image_view.h"

namespace tarnwick::tests {

/// The bytes of a compiled file that grows while it is described. Records are reserved as tables, filled in, and stay
/// reachable under their table's name, so that a test can damage a finished file field by field.
class FileBuilder {
 public:
  /// A table of `Count` records in the file. Pointers into it hold until the file grows.
  template <core::PackedRecord T>
  struct Table {
    FileBuilder* File;
    int64_t Offset;
    int64_t Count;

    /// Where record `index` begins.
    int32_t At(int64_t index) const { return static_cast<int32_t>(Offset + index * static_cast<int64_t>(sizeof(T))); }
    T& operator[](int64_t index) const { return *File->template Pointer<T>(At(index)); }
    /// From the start of record `index` to `place`, as offset fields count.
    int32_t To(int64_t place, int64_t index = 0) const { return static_cast<int32_t>(place) - At(index); }
  };

  /// Adds `count` records of zeros; they can be found again as `name` unless that is empty.
  template <core::PackedRecord T>
  Table<T> Reserve(int64_t count, const std::string& name = {}) {
    const Table<T> table{this, Size(), count};
    if (!name.empty()) m_places[name] = table.Offset;
    m_bytes.resize(m_bytes.size() + sizeof(T) * static_cast<size_t>(count));
    return table;
  }

  /// Adds bytes as they stand and tells where they begin.
  int32_t Append(std::string_view bytes) {
    const auto place = static_cast<int32_t>(Size());
    m_bytes += bytes;
    return place;
  }
  /// Adds one value as the file holds it.
  template <typename T>
  int32_t AppendValue(const T& value) {
    return Append(std::string_view(reinterpret_cast<const char*>(&value), sizeof(T)));
  }
  /// Where `text` stands, ended by a NUL; equal texts stand once.
  int32_t Text(const std::string& text) {
    const auto [entry, isNew] = m_texts.try_emplace(text, static_cast<int32_t>(Size()));
    if (isNew) m_bytes.append(text).push_back('\0');
    return entry->second;
  }
  /// Adds zeros up to a multiple of `unit`.
  void Align(int64_t unit) { m_bytes.resize(m_bytes.size() + static_cast<size_t>((unit - Size() % unit) % unit)); }

  /// Lets the next byte be found as `name`.
  void Mark(const std::string& name) { m_places[name] = Size(); }
  /// Where the table `name` begins; throws for a name that the file does not have.
  int64_t Place(const std::string& name) const {
    const auto found = m_places.find(name);
    if (found == m_places.end()) throw std::out_of_range("the built file has no place \"" + name + "\"");
    return found->second;
  }
  /// Record `index` of the table `name`, to be changed at will.
  template <core::PackedRecord T>
  T& Record(const std::string& name, int64_t index = 0) {
    return *Pointer<T>(Place(name) + index * static_cast<int64_t>(sizeof(T)));
  }

  int64_t Size() const { return static_cast<int64_t>(m_bytes.size()); }
  const std::string& Bytes() const { return m_bytes; }
  /// The bytes, for changes that no record describes (truncation, noise).
  std::string& Bytes() { return m_bytes; }

 private:
  template <core::PackedRecord T>
  T* Pointer(int64_t offset) {
    if (offset < 0 || offset + static_cast<int64_t>(sizeof(T)) > Size()) {
      throw std::out_of_range("a record outside the built file");
    }
    return reinterpret_cast<T*>(m_bytes.data() + offset);
  }

  std::string m_bytes;
  std::map<std::string, int32_t> m_texts;
  std::map<std::string, int64_t> m_places;
};

/// The name of a table that stands once for each of several owners: PlaceName("meshes", {0, 1}) is "meshes 0.1".
inline std::string PlaceName(std::string_view table, std::initializer_list<size_t> owner) {
  std::string name(table);
  char separator = ' ';
  for (const size_t index : owner) {
    name += separator + std::to_string(index);
    separator = '.';
  }
  return name;
}

}  // namespace tarnwick::tests
