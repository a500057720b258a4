#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

namespace tarnwick::core {

static_assert(std::endian::native == std::endian::little, "compiled files are little-endian and are read in place");

/// A record that can be read in place at any byte of an image: plain data, declared under `#pragma pack(push, 1)`. A
/// number of it is never bound to a reference, since it may lie at an odd place: std::max takes `+record->Count`.
template <typename T>
concept PackedRecord = std::is_trivially_copyable_v<T> && alignof(T) == 1;

/// One record inside an image, together with its offset from the image's start, since compiled files address
/// everything relative to the record that holds the address.
template <PackedRecord T>
class Record {
 public:
  Record(const T* record, int64_t offset) : m_record(record), m_offset(offset) {}

  const T* operator->() const { return m_record; }
  const T& operator*() const { return *m_record; }

  /// Bytes from the start of the image to this record.
  int64_t Offset() const { return m_offset; }

 private:
  const T* m_record;
  int64_t m_offset;
};

/// A run of equal records that lies wholly inside its image: checked once, then walked without checks.
template <PackedRecord T>
class RecordArray {
 public:
  RecordArray() = default;
  RecordArray(const T* first, int64_t offset, int64_t count) : m_first(first), m_offset(offset), m_count(count) {}

  int64_t Count() const { return m_count; }
  int64_t Offset() const { return m_offset; }

  /// Whether `index` names a record of the array.
  bool Holds(int64_t index) const { return index >= 0 && index < m_count; }

  /// Record number `index`; the caller stays in range (see Holds), or the program ends.
  Record<T> operator[](int64_t index) const {
    if (!Holds(index)) [[unlikely]]
      std::abort();
    return Unchecked(index);
  }

  /// The records side by side, for who goes through many and needs no offsets.
  std::span<const T> Records() const { return {m_first, static_cast<size_t>(m_count)}; }

  class Iterator {
   public:
    using value_type = Record<T>;
    using difference_type = std::ptrdiff_t;
    using iterator_category = std::input_iterator_tag;
    using pointer = void;
    using reference = Record<T>;

    Iterator(const RecordArray* array, int64_t index) : m_array(array), m_index(index) {}
    Record<T> operator*() const { return m_array->Unchecked(m_index); }
    Iterator& operator++() {
      ++m_index;
      return *this;
    }
    bool operator==(const Iterator& other) const { return m_index == other.m_index; }

   private:
    const RecordArray* m_array;
    int64_t m_index;
  };

  Iterator begin() const { return Iterator(this, 0); }
  Iterator end() const { return Iterator(this, m_count); }

 private:
  Record<T> Unchecked(int64_t index) const {
    return Record<T>(m_first + index, m_offset + index * static_cast<int64_t>(sizeof(T)));
  }

  const T* m_first = nullptr;
  int64_t m_offset = 0;
  int64_t m_count = 0;
};

/// Bounds-checked access to the bytes of a whole file. The view does not own the bytes. Every function says "nothing"
/// (an empty optional) for a range that does not lie inside the image, whatever the numbers are; none of them
/// allocates.
class ImageView {
 public:
  ImageView() = default;
  explicit ImageView(std::span<const std::byte> bytes) : m_bytes(bytes) {}

  int64_t Size() const { return static_cast<int64_t>(m_bytes.size()); }

  /// Whether `count` records of `stride` bytes that start at `offset` lie inside the image. A count of 0 fits at any
  /// offset, since nothing is read there.
  [[nodiscard]] bool Fits(int64_t offset, int64_t count, int64_t stride) const {
    if (count == 0) return true;
    if (offset < 0 || count < 0 || stride <= 0 || offset > Size()) return false;
    return count <= (Size() - offset) / stride;
  }

  /// `count` records from `offset` on.
  template <PackedRecord T>
  [[nodiscard]] std::optional<RecordArray<T>> Array(int64_t offset, int64_t count) const {
    if (!Fits(offset, count, static_cast<int64_t>(sizeof(T)))) return std::nullopt;
    if (count == 0) return RecordArray<T>(nullptr, offset, 0);
    return RecordArray<T>(reinterpret_cast<const T*>(m_bytes.data() + offset), offset, count);
  }

  /// The one record at `offset`.
  template <PackedRecord T>
  [[nodiscard]] std::optional<Record<T>> At(int64_t offset) const {
    if (!Fits(offset, 1, static_cast<int64_t>(sizeof(T)))) return std::nullopt;
    return Record<T>(reinterpret_cast<const T*>(m_bytes.data() + offset), offset);
  }

  /// A plain value (an integer, a float) at `offset`.
  template <typename T>
  requires std::is_arithmetic_v<T> std::optional<T> Value(int64_t offset)
  const {
    if (!Fits(offset, 1, static_cast<int64_t>(sizeof(T)))) return std::nullopt;
    T value;
    std::memcpy(&value, m_bytes.data() + offset, sizeof(T));
    return value;
  }

  /// The NUL-terminated string at `offset`, without its NUL. Nothing if it has no NUL inside the image.
  [[nodiscard]] std::optional<std::string_view> Text(int64_t offset) const {
    if (!Fits(offset, 1, 1)) return std::nullopt;
    const char* first = reinterpret_cast<const char*>(m_bytes.data() + offset);
    const void* end = std::memchr(first, 0, static_cast<size_t>(Size() - offset));
    if (end == nullptr) return std::nullopt;
    return std::string_view(first, static_cast<size_t>(static_cast<const char*>(end) - first));
  }

  /// `size` bytes from `offset` on.
  [[nodiscard]] std::optional<std::span<const std::byte>> Bytes(int64_t offset, int64_t size) const {
    if (!Fits(offset, size, 1)) return std::nullopt;
    if (size == 0) return std::span<const std::byte>();
    return m_bytes.subspan(static_cast<size_t>(offset), static_cast<size_t>(size));
  }

 private:
  std::span<const std::byte> m_bytes;
};

/// The text of a fixed array of characters that a NUL ends early.
template <size_t Size>
std::string_view FixedText(const char (&text)[Size]) {
  const void* end = std::memchr(text, 0, Size);
  return std::string_view(text, end == nullptr ? Size : static_cast<size_t>(static_cast<const char*>(end) - text));
}

}  // namespace tarnwick::core
