#include "archives/archive_name.h"

#include <filesystem>

#include "core/paths.h"

namespace tarnwick::archives {

namespace {

bool HasExtension(std::string_view path, std::string_view extension) {
  return path.size() > extension.size() &&
         core::EqualIgnoringCase(path.substr(path.size() - extension.size()), extension);
}

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(core::NativePath(path), error);
}

}  // namespace

bool HasArchiveExtension(std::string_view path) {
  return HasExtension(path, ".vpk") || HasExtension(path, ".gma");
}

std::string DirectoryFileOf(const std::string& path) {
  if (!HasExtension(path, ".vpk")) return path;
  const std::string stem = path.substr(0, path.size() - 4);
  const size_t line = stem.find_last_of('_');
  const bool isPart = line != std::string::npos && stem.size() - line == 4 &&
                      stem.find_first_not_of("0123456789", line + 1) == std::string::npos;
  if (!isPart && Exists(path)) return path;
  const std::string directory = (isPart ? stem.substr(0, line) : stem) + "_dir" + path.substr(stem.size());
  return Exists(directory) ? directory : path;
}

ContentName ReadContentName(const std::string& name) {
  using Place = ContentName::Place;
  size_t colon = name.find(':');
  if (colon == std::string::npos || Exists(name)) return {Place::Disk, name, {}};
  if (core::EqualIgnoringCase(std::string_view(name).substr(0, colon), "game")) {
    return {Place::Game, {}, name.substr(colon + 1)};
  }
  // The first archive that is there; where none is, the first that could be, so that its name stands in the message.
  std::optional<ContentName> missing;
  for (; colon != std::string::npos; colon = name.find(':', colon + 1)) {
    const std::string path = name.substr(0, colon);
    if (!HasArchiveExtension(path)) continue;
    ContentName inside{Place::Archive, DirectoryFileOf(path), name.substr(colon + 1)};
    if (core::FileExists(inside.Path)) return inside;
    if (!missing) missing = std::move(inside);
  }
  return missing ? *missing : ContentName{Place::Disk, name, {}};
}

}  // namespace tarnwick::archives
