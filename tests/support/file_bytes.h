#pragma once

#include <string>

#include "core/file_image.h"

namespace tarnwick::tests {

/// The file at `path` byte for byte, whatever the platform's line ends; "" if it cannot be read.
inline std::string BytesOf(const std::string& path) {
  const auto file = core::FileImage::Read(path);
  return file ? std::string(reinterpret_cast<const char*>(file->Bytes().data()), file->Bytes().size()) : "";
}

}  // namespace tarnwick::tests
