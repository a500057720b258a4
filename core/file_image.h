#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "core/image_view.h"

namespace tarnwick::core {

/// Whether a file that begins with these bytes is to be read.
using WantsFile = std::function<bool(std::span<const std::byte>)>;

/// The bytes of a whole file, read into one buffer, which lives as long as an image of it does. Moving or
/// copying an image does not move the bytes, so views stay good.
class FileImage {
 public:
  /// Reads the file at `path` (either slash is taken). Nothing if it cannot be opened or read, or is no regular file;
  /// then `reason`, if given, tells why in the system's words.
  [[nodiscard]] static std::optional<FileImage> Read(const std::string& path, std::string* reason = nullptr);

  /// The same, unless `wants` refuses the file's first `start` bytes: then nothing, and `reason` is left alone. It is
  /// not asked of a shorter file.
  [[nodiscard]] static std::optional<FileImage> ReadIf(const std::string& path, size_t start, const WantsFile& wants,
                                                       std::string* reason = nullptr);

  /// An image over bytes made in memory. `bytes` is copied.
  static FileImage FromBytes(std::string path, std::span<const std::byte> bytes);

  /// An image of `size` bytes that `fill` writes, handed all of them at once. Nothing if it returns false.
  template <typename Fill>
  [[nodiscard]] static std::optional<FileImage> Filled(std::string path, size_t size, Fill fill) {
    auto bytes = MakeBytes(size);
    if (!fill(std::span<std::byte>(bytes.get(), size))) return std::nullopt;
    return OfShared(std::move(path), std::move(bytes), size);
  }

  /// An image over bytes that others may have too. `bytes` keeps them alive.
  static FileImage OfShared(std::string path, std::shared_ptr<const std::byte[]> bytes, size_t size) {
    FileImage image;
    image.m_path = std::move(path);
    image.m_size = size;
    image.m_bytes = std::move(bytes);
    return image;
  }

  /// The same bytes under another path.
  FileImage Named(std::string path) && {
    m_path = std::move(path);
    return std::move(*this);
  }

  /// The path that the image was read from.
  const std::string& Path() const { return m_path; }
  ImageView View() const { return ImageView(Bytes()); }
  std::span<const std::byte> Bytes() const { return {m_bytes.get(), m_size}; }

 private:
  /// Room for the bytes that begins with a line of the processor's cache: the system copies them sooner to there.
  static std::shared_ptr<std::byte[]> MakeBytes(size_t size);

  std::string m_path;
  std::shared_ptr<const std::byte[]> m_bytes;
  size_t m_size = 0;
};

}  // namespace tarnwick::core
