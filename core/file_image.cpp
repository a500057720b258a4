#include "core/file_image.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/readable_file.h"

namespace tarnwick::core {

std::optional<FileImage> FileImage::Read(const std::string& path, std::string* reason) {
  return ReadIf(path, 0, nullptr, reason);
}

std::optional<FileImage> FileImage::ReadIf(const std::string& path, size_t start, const WantsFile& wants,
                                           std::string* reason) {
  auto file = ReadableFile::Open(path, reason);
  if (!file) return std::nullopt;
  const auto size = static_cast<size_t>(file->Size());
  std::vector<std::byte> first(wants && start <= size ? start : 0);
  const auto head = file->Read(first);
  if (head && *head == start && wants && !wants(first)) return std::nullopt;
  auto bytes = MakeBytes(size);
  std::copy(first.begin(), first.end(), bytes.get());
  const auto rest = head ? file->Read({bytes.get() + *head, size - *head}) : std::nullopt;
  if (!rest) {
    if (reason != nullptr) *reason = "it could not be read";
    return std::nullopt;
  }
  return OfShared(path, std::move(bytes), *head + *rest);  // shorter if the file shrank while it was read
}

std::shared_ptr<std::byte[]> FileImage::MakeBytes(size_t size) {
  constexpr auto Alignment = std::align_val_t{64};
  const auto remove = [](std::byte* bytes) { ::operator delete[](bytes, Alignment); };
  return {static_cast<std::byte*>(::operator new[](size, Alignment)), remove};
}

FileImage FileImage::FromBytes(std::string path, std::span<const std::byte> bytes) {
  auto copy = MakeBytes(bytes.size());
  if (!bytes.empty()) std::memcpy(copy.get(), bytes.data(), bytes.size());
  return OfShared(std::move(path), std::move(copy), bytes.size());
}

}  // namespace tarnwick::core
