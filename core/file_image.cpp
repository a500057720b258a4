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
  auto bytes = std::make_unique_for_overwrite<std::byte[]>(static_cast<size_t>(size));
  file.read(reinterpret_cast<char*>(bytes.get()), static_cast<std::streamsize>(size));
  if (file.bad()) {
    Explain(reason, "it could not be read");
    return std::nullopt;
  }
  // Shorter if the file shrank while it was read.
  return OfShared(path, std::move(bytes), static_cast<size_t>(file.gcount()));
}

FileImage FileImage::FromBytes(std::string path, std::span<const std::byte> bytes) {
  auto copy = std::make_unique_for_overwrite<std::byte[]>(bytes.size());
  if (!bytes.empty()) std::memcpy(copy.get(), bytes.data(), bytes.size());
  return OfShared(std::move(path), std::move(copy), bytes.size());
}

}  // namespace tarnwick::core
