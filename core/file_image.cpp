#include "core/file_image.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "core/paths.h"

namespace tarnwick::core {

namespace {

void Explain(std::string* reason, std::string_view text) {
  if (reason != nullptr) *reason = text;
}

}  // namespace

std::optional<FileImage> FileImage::Read(const std::string& path, std::string* reason) {
  const std::filesystem::path native = NativePath(path);
  std::error_code error;
  const auto status = std::filesystem::status(native, error);
  if (error) {
    Explain(reason, error.message());
    return std::nullopt;
  }
  if (!std::filesystem::is_regular_file(status)) {
    Explain(reason, std::filesystem::is_directory(status) ? "it is a folder" : "it is not a regular file");
    return std::nullopt;
  }
  errno = 0;
  std::ifstream file(native, std::ios::binary);
  const auto size = file ? std::filesystem::file_size(native, error) : 0;
  if (!file || error) {
    Explain(reason, error ? error.message() : std::string(std::strerror(errno)));
    return std::nullopt;
  }
  FileImage image;
  image.m_path = path;
  image.m_size = static_cast<size_t>(size);
  image.m_bytes = std::make_unique_for_overwrite<std::byte[]>(image.m_size);
  file.read(reinterpret_cast<char*>(image.m_bytes.get()), static_cast<std::streamsize>(image.m_size));
  if (file.bad()) {
    Explain(reason, "it could not be read");
    return std::nullopt;
  }
  image.m_size = static_cast<size_t>(file.gcount());  // shorter if the file shrank while it was read
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
