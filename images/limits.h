#pragma once

#include <cstdint>

namespace tarnwick::images {

/// What one conversion may use. A file that asks for more is refused by its header, before anything is allocated; what
/// a lying header gets past that ends at the limits that the system keeps.
inline constexpr int64_t LargestSide = 16'384;                           // pixels of width or height
inline constexpr int64_t LargestPixelBytes = int64_t{1} << 30;           // of all images of the conversion together
inline constexpr int LargestThumbnailSide = 128;                         // pixels; a larger preview may use more
inline constexpr int64_t LargestThumbnailBytes = int64_t{48} << 20;      // of the image that a small picture is made of
inline constexpr int64_t ThumbnailMemory = int64_t{64} << 20;            // of the process, beyond what it starts with
inline constexpr int64_t LargestMemory = LargestPixelBytes * 2;          // of the process: pixels, decoder, code
inline constexpr int64_t LargestOutput = LargestPixelBytes + (1 << 20);  // bytes of the file that is written
inline constexpr int64_t LongestProcessorTime = 60;                      // seconds of computing
inline constexpr int64_t LongestRun = 300;                               // seconds on the clock

}  // namespace tarnwick::images
