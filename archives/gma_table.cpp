#include "archives/gma_table.h"

#include <array>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

namespace tarnwick::archives {

namespace {

constexpr size_t LongestText = size_t{1} << 20;  // the description may hold a page
constexpr size_t MostNeededContent = 4096;
constexpr uint64_t LargestFile = uint64_t{1} << 40;

/// Reads a source from its start on, in pieces.
class Walk {
 public:
  Walk(const ByteSource& file, std::string& reason) : m_file(file), m_reason(reason), m_piece(size_t{1} << 16) {}

  uint64_t Place() const { return m_pieceStart + m_next; }

  template <typename T>
  requires std::is_arithmetic_v<T>
  bool Value(T& value) {
    std::array<char, sizeof(T)> bytes;
    for (char& byte : bytes) {
      if (!Byte(byte)) return false;
    }
    std::memcpy(&value, bytes.data(), sizeof(T));
    return true;
  }

  bool Text(std::string& text, size_t longest) {
    text.clear();
    for (;;) {
      if (m_next == m_size && !Refill()) return false;
      const char* first = m_piece.data() + m_next;
      const void* end = std::memchr(first, 0, m_size - m_next);
      const size_t size = end == nullptr ? m_size - m_next : static_cast<size_t>(static_cast<const char*>(end) - first);
      if (text.size() + size > longest) return Fail("a text is longer than " + std::to_string(longest) + " bytes");
      text.append(first, size);
      m_next += size;
      if (end == nullptr) continue;
      ++m_next;
      return true;
    }
  }

  bool Fail(const std::string& text) {
    m_reason = "it is damaged at byte " + std::to_string(Place()) + ": " + text;
    return false;
  }

 private:
  bool Byte(char& byte) {
    if (m_next == m_size && !Refill()) return false;
    byte = m_piece[m_next++];
    return true;
  }

  bool Refill() {
    m_pieceStart += m_size;
    m_next = m_size = 0;
    const auto got = m_file.Read(m_pieceStart, std::as_writable_bytes(std::span(m_piece)), m_reason);
    if (!got) return false;
    m_size = *got;
    return m_size > 0 || Fail("it ends before its list of files does");
  }

  const ByteSource& m_file;
  std::string& m_reason;
  std::vector<char> m_piece;
  uint64_t m_pieceStart = 0;
  size_t m_size = 0;
  size_t m_next = 0;
};

bool ReadHead(Walk& walk, GmaInfo& info) {
  uint64_t number = 0;
  uint64_t timeStamp = 0;
  if (!walk.Value(info.Version) || !walk.Value(number) || !walk.Value(timeStamp)) return false;
  if (info.Version > 1) {
    std::string needed = " ";
    for (size_t i = 0; !needed.empty(); ++i) {
      if (i > MostNeededContent) return walk.Fail("the list of needed content has no end");
      if (!walk.Text(needed, LongestText)) return false;
    }
  }
  int32_t addonVersion = 0;
  return walk.Text(info.Name, LongestText) && walk.Text(info.Description, LongestText) &&
         walk.Text(info.Author, LongestText) && walk.Value(addonVersion);
}

}  // namespace

bool ReadGmaTable(const ByteSource& file, GmaInfo& info, FileTable& files, std::string& reason) {
  Walk walk(file, reason);
  uint32_t signature = 0;
  constexpr uint32_t GmadSignature = 'G' | 'M' << 8 | 'A' << 16 | 'D' << 24;
  if (!walk.Value(signature)) return false;
  if (signature != GmadSignature) {
    reason = "it is no GMA addon";
    return false;
  }
  if (!ReadHead(walk, info)) return false;

  // Where the files' bytes begin is known behind the list: until then they are counted from 0.
  uint64_t dataSize = 0;
  std::string name;
  for (;;) {
    uint32_t number = 0;
    int64_t size = 0;
    uint32_t crc = 0;
    if (!walk.Value(number)) return false;
    if (number == 0) break;
    if (!walk.Text(name, LongestName) || !walk.Value(size) || !walk.Value(crc)) return false;
    if (name.empty()) return walk.Fail("a file has no name");
    if (size < 0 || static_cast<uint64_t>(size) > LargestFile) {
      return walk.Fail("a file has " + std::to_string(size) + " bytes");
    }
    if (!files.Add(name, {.Offset = dataSize, .Size = static_cast<uint64_t>(size), .Crc = crc})) {
      return walk.Fail("the list of files holds more than an archive can");
    }
    dataSize += static_cast<uint64_t>(size);
  }
  files.MoveOffsets(walk.Place());
  files.Shrink();
  info.DataEnd = walk.Place() + dataSize;
  return true;
}

}  // namespace tarnwick::archives
