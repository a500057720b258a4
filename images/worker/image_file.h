#pragma once

#include <FreeImage.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace tarnwick::images {

struct UnloadBitmap {
  void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
/// An image in memory.
using Bitmap = std::unique_ptr<FIBITMAP, UnloadBitmap>;

/// An open file that the image library reads or writes through its handle.
class ImageFile {
 public:
  ImageFile() = default;
  /// Opens a regular file for reading. Closed, with `reason`, if that fails.
  static ImageFile OpenForReading(const std::string& path, std::string& reason);
  /// Opens an existing regular file, no link, for writing and empties it. Closed, with `reason`, if that fails.
  static ImageFile OpenForWriting(const std::string& path, std::string& reason);

  explicit operator bool() const { return m_file != nullptr; }
  FILE* Handle() const { return m_file.get(); }
  void Rewind() const { std::rewind(m_file.get()); }
  /// How often the library was given less than it asked for, since the count was forgotten.
  static int ShortReads();
  static void ForgetShortReads();
  /// Writes what is buffered. False if that or any write before it failed.
  bool Flush() const { return std::fflush(m_file.get()) == 0 && std::ferror(m_file.get()) == 0; }

 private:
  struct Close {
    void operator()(FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<FILE, Close> m_file;
};

/// How the library reaches an ImageFile's handle.
FreeImageIO* FileAccess();

/// Width, height and depth of an image, from its header alone.
struct HeaderSize {
  int64_t Width = 0;   // pixels
  int64_t Height = 0;  // pixels
  int64_t BitsPerPixel = 0;

  int64_t Bytes() const { return Width * Height * ((BitsPerPixel + 7) / 8); }
};

}  // namespace tarnwick::images
