#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "images/image_worker.h"

namespace tarnwick::images {

/// A file format that the worker's library knows; its place in the list is its number there.
struct KnownFormat {
  std::string Name;
  std::vector<std::string> Endings;  // of its files, without a dot, in small letters
  bool Reads = false;
  bool Writes = false;
};

/// All formats that the worker knows. Empty if it cannot be asked; then `reason`, if given, says why.
std::vector<KnownFormat> KnownFormats(const ImageWorker& worker, std::string* reason = nullptr);

}  // namespace tarnwick::images
