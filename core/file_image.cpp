#include "core/file_image.h"

#include <cstring>

#include "core/readable_file.h"

namespace tarnwick::core {

std::optional<FileImage> FileImage::Read(const std::string& path, std::string* reason) {
  auto file = ReadableFile::Open(path, reason);
  if (!file) return std::nullopt;
  const auto size = static_cast<size_t>(file->Size());
  auto bytes = std::make_unique_for_overwrite<std::byte[]>(size);
  const auto read = file->Read({bytes.get(), size});
  if (!read) {
    if (reason != nullptr) *reason = "it could not be read";
    return std::nullopt;
  }
  return OfShared(path, std::move(bytes), *read);  // shorter if the file shrank while it was read
}

FileImage FileImage::FromBytes(std::string path, std::span<const std::byte> bytes) {
  auto copy = std::make_unique_for_overwrite<std::byte[]>(bytes.size());
  if (!bytes.empty()) std::memcpy(copy.get(), bytes.data(), bytes.size());
  return OfShared(std::move(path), std::move(copy), bytes.size());
}

}  // namespace tarnwick::core
