#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "archives/byte_source.h"
#include "archives/file_table.h"
#include "archives/gma_table.h"
#include "core/file_image.h"

namespace tarnwick::archives {

enum class ArchiveKind { Vpk, Gma };

/// One opened VPK archive (all its files) or GMA addon: the names in memory, the bytes read when a file is taken out.
/// Several threads may use one archive at once.
///
///     std::string reason;
///     const auto archive = Archive::Open("hl2/pak01_dir.vpk", reason);
///     const auto file = archive->Find("models/crate.mdl");
///     const auto image = archive->Read(*file, reason);
class Archive {
 public:
  /// Opens the archive at `path`: a VPK directory file, a GMA addon, or an addon packed in LZMA; its first bytes tell
  /// which. Null if it is none or is damaged; then `reason` tells why, and where.
  static std::shared_ptr<const Archive> Open(const std::string& path, std::string& reason);
  /// The same over bytes that are no file on the disk.
  static std::shared_ptr<const Archive> Open(const std::string& path, std::unique_ptr<ByteSource> bytes,
                                             std::string& reason);

  const std::string& Path() const { return m_path; }
  ArchiveKind Kind() const { return m_kind; }
  uint32_t Version() const { return m_version; }
  bool IsPacked() const { return m_packed; }
  /// What an addon says about itself; empty for VPK.
  const GmaInfo& Addon() const { return m_addon; }
  const FileTable& Files() const { return m_files; }
  /// The name of an archive's file as the program takes it: "path/to/pak01_dir.vpk:models/crate.mdl".
  std::string FullName(uint32_t file) const { return m_path + ':' + m_files.Name(file); }
  /// The file that archive number `part` of a VPK is in, beside the directory file.
  std::string PartPath(uint16_t part) const;

  /// Whether the archive on the disk (the files of it that were opened so far) is no longer the one that was opened.
  /// What is taken out of it then may be refused for its CRC-32; whoever keeps archives opens it anew.
  bool HasChanged() const;

  /// The number of the first file of that name, without regard to ASCII case and slash.
  std::optional<uint32_t> Find(std::string_view name) const;

  /// The whole file, its CRC-32 checked. Nothing, with `reason` (which part, which bytes), if it cannot be had or the
  /// CRC-32 differs.
  std::optional<core::FileImage> Read(uint32_t file, std::string& reason) const;

  /// Fills `out` with the file's first bytes, unchecked by its CRC-32. False if it has fewer or they cannot be had.
  bool ReadStart(uint32_t file, std::span<std::byte> out) const;

  /// Hands the file to `take` in pieces and checks the CRC-32 at its end, so whoever keeps the pieces does so for good
  /// only after true. False, with `reason`, if it cannot be had or the CRC-32 differs, and if `take` gives false
  /// (`reason` is then empty).
  bool ReadPieces(uint32_t file, const std::function<bool(std::string_view)>& take, std::string& reason) const;

  /// Whether the CRC-32 at an addon's end is that of all before it; true for VPK. `reason` tells what is wrong, and is
  /// empty if a stop came first.
  bool CheckWhole(const std::stop_token& stop, std::string& reason) const;

 private:
  Archive(std::string path, std::unique_ptr<ByteSource> bytes) : m_path(std::move(path)), m_own(std::move(bytes)) {}
  bool ReadTable(std::string& reason);
  const ByteSource* Part(uint16_t part, std::string& reason) const;
  bool ReadRange(const ByteSource& source, uint64_t offset, std::span<std::byte> out, std::string& reason) const;
  const ByteSource* Reachable(const FilePlace& place, std::string& reason) const;
  bool CheckCrc(const FilePlace& place, uint32_t crc, std::string& reason) const;
  std::string Explained(const std::string& reason) const;

  const std::string m_path;
  std::unique_ptr<ByteSource> m_own;  // the directory file, or the addon unpacked
  ArchiveKind m_kind = ArchiveKind::Vpk;
  uint32_t m_version = 0;
  bool m_packed = false;
  GmaInfo m_addon;
  FileTable m_files;
  mutable std::mutex m_partsLock;
  mutable std::map<uint16_t, std::unique_ptr<ByteSource>> m_parts;  // those opened so far
};

}  // namespace tarnwick::archives
