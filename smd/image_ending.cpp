#include "smd/image_ending.h"

#include <algorithm>
#include <iterator>

#include "core/paths.h"

namespace tarnwick::smd {

bool EndsAsImage(std::string_view name) {
  constexpr std::string_view Endings[] = {".tga", ".bmp", ".vmt", ".vtf", ".psd",
                                          ".png", ".jpg", ".pcx", ".tif", ".dds"};
  return std::any_of(std::begin(Endings), std::end(Endings), [&](std::string_view ending) {
    return name.size() >= ending.size() && core::EqualIgnoringCase(name.substr(name.size() - ending.size()), ending);
  });
}

}  // namespace tarnwick::smd
