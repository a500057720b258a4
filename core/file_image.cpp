#include "core/file_image.h"

#include <cstring>

#include "core/readable_file.h"

namespace tarnwick::core {

std::optional<FileImage> FileImage::Read(const std::string& path, std::string* reason) {
  auto file = ReadableFile::Open(path, reason);
  if (!file) return std::nullopt;
  FileImage image;
  image.m_path = path;
  image.m_size = static_cast<size_t>(file->Size());
  image.m_bytes = std::make_unique_for_overwrite<std::byte[]>(image.m_size);
  const auto read = file->Read({image.m_bytes.get(), image.m_size});
  if (!read) {
    if (reason != nullptr) *reason = "it could not be read";
    return std::nullopt;
  }
  image.m_size = *read;  // shorter if the file shrank while it was read
  return image;
}

FileImage FileImage::FromBytes(std::string path, std::span<const std::byte> bytes) {
  FileImage image;
  image.m_path = std::move(path);
  image.m_size = bytes.size();
  image.m_bytes = std::make_unique_for_overwrite<std::byte[]>(bytes.size());
  if (!bytes.empty()) std::memcpy(image.m_bytes.get(), bytes.data(), bytes.size());
  return image;
}

}  // namespace tarnwick::core
