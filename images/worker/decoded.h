#pragma once

#include <string>

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// What a decoder made of a file.
struct Decoded {
  Bitmap Image;
  std::string Damage;   // why the image cannot be whole, such as "the file ends early"; empty if nothing speaks for it
  std::string Failure;  // where there is no image: why, if that is known
};

/// "the file ends early: its header speaks of 12,288 bytes of pixels, 6,144 are there".
std::string EndsEarly(int64_t wantedBytes, int64_t bytesThere);

}  // namespace tarnwick::images
