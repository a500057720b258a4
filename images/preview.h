#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "images/image_worker.h"

namespace tarnwick::images {

/// A small picture for a window.
struct PreviewImage {
  int Width = 0;  // pixels
  int Height = 0;
  std::vector<uint8_t> Pixels;  // Width * Height * 4: red, green, blue, alpha, not premultiplied, top row first
};

/// The image at `path`, shrunk to fit a square of `side` pixels where it is larger, its proportions kept. Nothing if it
/// cannot be read; then `reason`, if given, says why. Calls may run side by side.
std::optional<PreviewImage> LoadPreview(const std::string& path, int side, const ImageWorker& worker,
                                        std::string* reason = nullptr);

}  // namespace tarnwick::images
