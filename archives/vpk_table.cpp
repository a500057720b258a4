#include "archives/vpk_table.h"

#include <cstring>
#include <memory>

#include "core/image_view.h"

namespace tarnwick::archives {

namespace {

constexpr size_t MostTreeBytes = size_t{512} << 20;
constexpr size_t BytesAFile = 40;  // of a tree, about; for what to make room for at first

std::string_view NoneForBlank(std::string_view text) {
  return text == " " ? std::string_view() : text;
}

/// Walks a tree. What it reads lies inside the tree, whatever the bytes are, and each step takes at least one of them.
class Tree {
 public:
  Tree(std::span<const std::byte> bytes, uint32_t start, FileTable& files, std::string& reason)
      : m_text(reinterpret_cast<const char*>(bytes.data()), bytes.size()),
        m_start(start),
        m_files(files),
        m_reason(reason) {}

  bool Read() {
    std::string_view extension;
    std::string_view folder;
    std::string_view name;
    while (Text(extension) && !extension.empty()) {
      while (Text(folder) && !folder.empty()) {
        const auto number = m_files.AddFolder(NoneForBlank(folder));
        if (!number) return Fail("the directory holds more than an archive can");
        while (Text(name) && !name.empty()) {
          if (!Entry(*number, NoneForBlank(name), NoneForBlank(extension))) return false;
        }
        if (m_failed) return false;
      }
      if (m_failed) return false;
    }
    return !m_failed;
  }

 private:
  bool Text(std::string_view& text) {
    const char* first = m_text.data() + m_place;
    const void* end = m_place < m_text.size() ? std::memchr(first, 0, m_text.size() - m_place) : nullptr;
    if (end == nullptr) return Fail("the directory ends inside a list of names");
    text = {first, static_cast<size_t>(static_cast<const char*>(end) - first)};
    if (text.size() > LongestName) return Fail("a name is too long");
    m_place += text.size() + 1;
    return true;
  }

  bool Entry(uint32_t folder, std::string_view stem, std::string_view extension) {
    VpkEntry entry;
    if (m_text.size() - m_place < sizeof(entry)) return Fail("the directory ends inside an entry");
    std::memcpy(&entry, m_text.data() + m_place, sizeof(entry));
    if (entry.End != VpkEntryEnd) return Fail("an entry does not end in 0xFFFF");
    const size_t preload = m_place + sizeof(entry);
    if (m_text.size() - preload < entry.PreloadSize) return Fail("the bytes behind an entry run past the directory");
    // Those in this file are counted from the end of the tree.
    const uint64_t base = entry.Part == OwnPart ? m_start + m_text.size() : 0;
    const FilePlace place{.Offset = base + entry.Offset,
                          .Size = entry.Size,
                          .Crc = entry.Crc,
                          .PreloadOffset = static_cast<uint32_t>(m_start + preload),
                          .PreloadSize = entry.PreloadSize,
                          .Part = entry.Part};
    if (!m_files.Add(folder, stem, extension, place)) return Fail("the directory holds more than an archive can");
    m_place = preload + entry.PreloadSize;
    return true;
  }

  bool Fail(std::string_view text) {
    m_failed = true;
    m_reason = "it is damaged at byte " + std::to_string(m_start + m_place) + ": " + std::string(text);
    return false;
  }

  std::string_view m_text;
  const uint32_t m_start;  // of the tree in its file
  FileTable& m_files;
  std::string& m_reason;
  size_t m_place = 0;
  bool m_failed = false;
};

}  // namespace

std::optional<uint32_t> ReadVpkTable(const ByteSource& file, FileTable& files, std::string& reason) {
  VpkHeader header{};
  const auto got = file.Read(0, std::as_writable_bytes(std::span(&header, 1)), reason);
  if (!got) return std::nullopt;
  const auto refuse = [&](std::string text) {
    reason = std::move(text);
    return std::nullopt;
  };
  if (*got < sizeof(header) || header.Signature != VpkSignature) {
    return refuse("it is no VPK directory file (the directory of a split archive ends in _dir.vpk)");
  }
  if (header.Version != 1 && header.Version != 2) {
    return refuse("it is a VPK archive of version " + std::to_string(header.Version) + "; known are 1 and 2");
  }
  const uint32_t start = header.Version == 1 ? sizeof(VpkHeader) : sizeof(VpkHeader2);
  const uint64_t size = file.Size().value_or(0);
  if (size < start || header.TreeSize > size - start) {
    return refuse("its directory (" + std::to_string(header.TreeSize) + " bytes from byte " + std::to_string(start) +
                  " on) runs past the end of the file (" + std::to_string(size) + " bytes)");
  }
  if (header.TreeSize > MostTreeBytes) return refuse("its directory is larger than 512 MiB");

  const auto bytes = std::make_unique_for_overwrite<std::byte[]>(header.TreeSize);
  const std::span tree(bytes.get(), header.TreeSize);
  const auto treeGot = file.Read(start, tree, reason);
  if (!treeGot) return std::nullopt;
  if (*treeGot < tree.size()) return refuse("it has become shorter while it was read");
  files.Reserve(tree.size() / BytesAFile);
  if (!Tree(tree, start, files, reason).Read()) return std::nullopt;
  files.Shrink();
  return +header.Version;
}

}  // namespace tarnwick::archives
