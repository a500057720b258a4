#include "archives/archive.h"

#include <algorithm>
#include <array>
#include <vector>

#include "archives/checksum.h"
#include "archives/folded_text.h"
#include "archives/random_file.h"
#include "archives/unpacked_stream.h"
#include "archives/vpk_table.h"
#include "core/image_view.h"
#include "core/paths.h"

namespace tarnwick::archives {

namespace {

constexpr size_t PieceSize = size_t{1} << 18;
constexpr uint64_t LargestImage = uint64_t{1} << 30;  // more than any file that a game loads

std::string_view TextOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool EndsIgnoringCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && core::EqualIgnoringCase(text.substr(text.size() - end.size()), end);
}

}  // namespace

std::shared_ptr<const Archive> Archive::Open(const std::string& path, std::string& reason) {
  auto file = RandomFile::Open(path, reason);
  return file == nullptr ? nullptr : Open(path, std::move(file), reason);
}

std::shared_ptr<const Archive> Archive::Open(const std::string& path, std::unique_ptr<ByteSource> bytes,
                                             std::string& reason) {
  const std::shared_ptr<Archive> archive(new Archive(path, std::move(bytes)));
  return archive->ReadTable(reason) ? archive : nullptr;
}

bool Archive::ReadTable(std::string& reason) {
  std::array<std::byte, 4> start{};
  const auto got = m_own->Read(0, start, reason);
  if (!got) return false;
  m_packed = *got > 0 && start[0] == PackedMark;
  if (m_packed || TextOf(start) == "GMAD") {
    m_kind = ArchiveKind::Gma;
    if (m_packed) m_own = UnpackStream(std::move(m_own), reason);
    if (m_own == nullptr || !ReadGmaTable(*m_own, m_addon, m_files, reason)) return false;
    m_version = m_addon.Version;
    if (m_packed && m_addon.DataEnd > MostUnpackedBytes) {
      reason = "it unpacks to " + std::to_string(m_addon.DataEnd) + " bytes, more than 4 GiB";
      return false;
    }
    return true;
  }
  const auto version = ReadVpkTable(*m_own, m_files, reason);
  m_version = version.value_or(0);
  return version.has_value();
}

std::string Archive::PartPath(uint16_t part) const {
  if (part == OwnPart) return m_path;
  const std::string_view extension =
      EndsIgnoringCase(m_path, ".vpk") ? std::string_view(m_path).substr(m_path.size() - 4) : std::string_view();
  std::string path = m_path.substr(0, m_path.size() - extension.size());
  if (EndsIgnoringCase(path, "_dir")) path.resize(path.size() - 4);
  std::string number = std::to_string(part);
  if (number.size() < 3) number.insert(0, 3 - number.size(), '0');
  return path + '_' + number + std::string(extension);
}

std::optional<uint32_t> Archive::Find(std::string_view name) const {
  if (const auto found = m_files.Find(name)) return found;
  const std::string plain = PlainName(name);
  return plain == name ? std::nullopt : m_files.Find(plain);
}

const ByteSource* Archive::Part(uint16_t part, std::string& reason) const {
  if (part == OwnPart || m_kind == ArchiveKind::Gma) return m_own.get();
  const std::lock_guard lock(m_partsLock);
  const auto found = m_parts.find(part);
  if (found != m_parts.end()) return found->second.get();
  const std::string path = PartPath(part);
  const auto existing = core::FindIgnoringCase(path);
  auto file = RandomFile::Open(existing.value_or(path), reason);
  if (file == nullptr) {
    reason = "its bytes are in " + path + ": " + reason;
    return nullptr;
  }
  return m_parts.emplace(part, std::move(file)).first->second.get();
}

/// The part that holds the file, once it is certain that its bytes can lie there; null, with `reason`, otherwise.
const ByteSource* Archive::Reachable(const FilePlace& place, std::string& reason) const {
  if (place.Size == 0) return m_own.get();
  const ByteSource* const part = Part(place.Part, reason);
  if (part == nullptr) return nullptr;
  const auto size = part->Size();
  if (!size || (place.Offset <= *size && place.Size <= *size - place.Offset)) return part;
  reason = "its " + std::to_string(place.Size) + " bytes at byte " + std::to_string(place.Offset) +
           " run past the end of " + PartPath(place.Part) + " (" + std::to_string(*size) + " bytes)";
  return nullptr;
}

bool Archive::ReadRange(const ByteSource& source, uint64_t offset, std::span<std::byte> out,
                        std::string& reason) const {
  const auto got = source.Read(offset, out, reason);
  if (!got) return false;
  if (*got == out.size()) return true;
  reason = Explained("its archive ends at byte " + std::to_string(offset + *got) + ", " +
                     std::to_string(out.size() - *got) + " bytes too early");
  return false;
}

bool Archive::CheckCrc(const FilePlace& place, uint32_t crc, std::string& reason) const {
  if (crc == place.Crc) return true;
  reason = Explained("it is damaged: its CRC-32 is " + CrcText(crc) + " and should be " + CrcText(place.Crc) + " (" +
                     std::to_string(place.Size) + " bytes at byte " + std::to_string(place.Offset) + " of " +
                     PartPath(place.Part) + ")");
  return false;
}

bool Archive::HasChanged() const {
  if (m_own->HasChanged()) return true;
  const std::lock_guard lock(m_partsLock);
  return std::any_of(m_parts.begin(), m_parts.end(), [](const auto& part) { return part.second->HasChanged(); });
}

/// Why bytes are not what they should be, also where the archive was written meanwhile.
std::string Archive::Explained(const std::string& reason) const {
  return HasChanged() ? reason + "; the archive on the disk has changed since it was opened" : reason;
}

std::optional<core::FileImage> Archive::Read(uint32_t file, std::string& reason) const {
  const FilePlace& place = m_files.Place(file);
  if (place.WholeSize() > LargestImage) {
    reason = "it has " + std::to_string(place.WholeSize()) + " bytes, more than 1 GiB";
    return std::nullopt;
  }
  const ByteSource* const part = Reachable(place, reason);
  if (part == nullptr) return std::nullopt;
  return core::FileImage::Filled(FullName(file), place.WholeSize(), [&](std::span<std::byte> bytes) {
    return ReadRange(*m_own, place.PreloadOffset, bytes.first(place.PreloadSize), reason) &&
           ReadRange(*part, place.Offset, bytes.subspan(place.PreloadSize), reason) &&
           CheckCrc(place, Crc32(bytes), reason);
  });
}

bool Archive::ReadStart(uint32_t file, std::span<std::byte> out) const {
  const FilePlace& place = m_files.Place(file);
  std::string ignored;
  const ByteSource* const part = place.WholeSize() < out.size() ? nullptr : Reachable(place, ignored);
  if (part == nullptr) return false;
  const auto preloaded = out.first(std::min<size_t>(out.size(), place.PreloadSize));
  return ReadRange(*m_own, place.PreloadOffset, preloaded, ignored) &&
         ReadRange(*part, place.Offset, out.subspan(preloaded.size()), ignored);
}

bool Archive::ReadPieces(uint32_t file, const std::function<bool(std::string_view)>& take, std::string& reason) const {
  reason.clear();
  const FilePlace& place = m_files.Place(file);
  const ByteSource* const part = Reachable(place, reason);
  if (part == nullptr) return false;
  std::vector<std::byte> piece(std::min<uint64_t>(PieceSize, std::max<uint64_t>(place.Size, place.PreloadSize)));
  uint32_t crc = 0;
  const auto hand = [&](const ByteSource& source, uint64_t offset, uint64_t size) {
    while (size > 0) {
      const std::span<std::byte> bytes(piece.data(), std::min<uint64_t>(piece.size(), size));
      if (!ReadRange(source, offset, bytes, reason)) return false;
      crc = Crc32(bytes, crc);
      if (!take(TextOf(bytes))) return false;
      offset += bytes.size();
      size -= bytes.size();
    }
    return true;
  };
  return hand(*m_own, place.PreloadOffset, place.PreloadSize) && hand(*part, place.Offset, place.Size) &&
         CheckCrc(place, crc, reason);
}

bool Archive::CheckWhole(const std::stop_token& stop, std::string& reason) const {
  reason.clear();
  if (m_kind == ArchiveKind::Vpk) return true;
  std::vector<std::byte> piece(PieceSize);
  uint32_t crc = 0;
  for (uint64_t place = 0; place < m_addon.DataEnd;) {
    if (stop.stop_requested()) return false;
    const auto bytes = std::span(piece).first(std::min<uint64_t>(piece.size(), m_addon.DataEnd - place));
    if (!ReadRange(*m_own, place, bytes, reason)) return false;
    crc = Crc32(bytes, crc);
    place += bytes.size();
  }
  std::array<std::byte, sizeof(uint32_t)> end{};
  if (!ReadRange(*m_own, m_addon.DataEnd, end, reason)) return false;
  const uint32_t expected = *core::ImageView(end).Value<uint32_t>(0);
  if (crc == expected) return true;
  reason = "the CRC-32 of the whole addon is " + CrcText(crc) + " and should be " + CrcText(expected);
  return false;
}

}  // namespace tarnwick::archives
