#include "textures/material_place.h"

#include <filesystem>
#include <iterator>
#include <vector>

#include "core/paths.h"

namespace tarnwick::textures {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> PartsOf(const fs::path& folder) {
  std::vector<std::string> parts;
  for (const fs::path& part : folder) {
    if (!part.empty()) parts.push_back(core::PathText(part));
  }
  return parts;
}

/// The number of the last part of that name; -1 if there is none.
ptrdiff_t FindLast(const std::vector<std::string>& parts, std::string_view name) {
  for (ptrdiff_t i = std::ssize(parts) - 1; i >= 0; --i) {
    if (core::EqualIgnoringCase(parts[static_cast<size_t>(i)], name)) return i;
  }
  return -1;
}

std::string NameBelow(const std::vector<std::string>& parts, ptrdiff_t folder, const std::string& stem) {
  std::string name;
  for (ptrdiff_t i = folder + 1; i < std::ssize(parts); ++i) name += parts[static_cast<size_t>(i)] + "/";
  return name + stem;
}

fs::path Absolute(const std::string& path) {
  std::error_code ignored;
  return fs::absolute(core::NativePath(path), ignored).lexically_normal();
}

}  // namespace

std::optional<MaterialPlace> PlaceOfMaterial(const std::string& tgaPath, const std::string& outputFolder,
                                             std::string& reason) {
  const fs::path tga = Absolute(tgaPath);
  MaterialPlace place;
  place.Stem = core::PathText(tga.stem());
  if (!outputFolder.empty()) {
    const std::vector<std::string> parts = PartsOf(Absolute(outputFolder));
    const ptrdiff_t materials = FindLast(parts, "materials");
    place.Folder = core::PathText(Absolute(outputFolder) / "");
    place.Name = materials < 0 ? place.Stem : NameBelow(parts, materials, place.Stem);
    return place;
  }
  const std::vector<std::string> parts = PartsOf(tga.parent_path());
  const ptrdiff_t source = FindLast(parts, "materialsrc");
  if (source < 0) {
    reason =
        "no folder of its path is named \"materialsrc\"; move it there, or name the folder for the texture with "
        "-outdir";
    return std::nullopt;
  }
  fs::path folder;
  for (ptrdiff_t i = 0; i < std::ssize(parts); ++i) {
    folder /= i == source ? fs::path("materials") : core::NativePath(parts[static_cast<size_t>(i)]);
  }
  place.Folder = core::PathText(folder / "");
  place.Name = NameBelow(parts, source, place.Stem);
  return place;
}

}  // namespace tarnwick::textures
