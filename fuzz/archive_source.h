#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "archives/archive.h"
#include "archives/extraction.h"
#include "archives/folded_text.h"
#include "archives/name_pattern.h"
#include "archives/safe_name.h"

namespace tarnwick::fuzz {

/// The fuzzer's bytes as an archive.
class InputSource : public archives::ByteSource {
 public:
  InputSource(const uint8_t* data, size_t size) : m_bytes(std::as_bytes(std::span(data, size))) {}
  std::optional<size_t> Read(uint64_t offset, std::span<std::byte> out, std::string&) const override {
    if (offset >= m_bytes.size()) return 0;
    const auto from = m_bytes.subspan(static_cast<size_t>(offset));
    const size_t size = std::min(out.size(), from.size());
    std::copy_n(from.begin(), size, out.begin());
    return size;
  }
  std::optional<uint64_t> Size() const override { return m_bytes.size(); }

 private:
  const std::span<const std::byte> m_bytes;
};

/// Opens any bytes as an archive, finds each file by its name, takes some out whole and in pieces, and compares.
inline void WalkArchive(const uint8_t* data, size_t size) {
  constexpr uint32_t MostTaken = 64;
  std::string reason;
  const auto archive = archives::Archive::Open("/nowhere/a.vpk", std::make_unique<InputSource>(data, size), reason);
  if ((archive == nullptr) == reason.empty() && archive == nullptr) std::abort();
  if (archive == nullptr) return;
  const archives::FileTable& files = archive->Files();
  for (uint32_t i = 0; i < files.Count(); ++i) {
    const std::string name = files.Name(i);
    const auto found = files.Find(name);
    if (files.IsFirst(i) && found != i) std::abort();
    if (!found || !archives::EqualFolded(files.Name(*found), name)) std::abort();
    if (archives::UnsafeReason(name).empty() && name.find("..") == 0 && name.size() == 2) std::abort();
    if (!archives::MatchesPattern(name, "**")) std::abort();
    if (i >= MostTaken) continue;
    std::string pieces;
    const auto image = archive->Read(i, reason);
    const bool whole = archive->ReadPieces(
        i,
        [&](std::string_view piece) {
          pieces += piece;
          return true;
        },
        reason);
    if (image.has_value() != whole) std::abort();
    if (whole && (image->Bytes().size() != pieces.size() || pieces.size() != files.Place(i).WholeSize())) std::abort();
  }
  if (files.SortedByName().size() != files.FilesIn("", true).size()) std::abort();
  archive->CheckWhole({}, reason);
}

}  // namespace tarnwick::fuzz
