#include "core/file_source.h"

#include <algorithm>

#include "core/paths.h"
#include "core/readable_file.h"

namespace tarnwick::core {

namespace {

class Disk : public FileSource {
 public:
  std::optional<FileImage> Read(const std::string& name, std::string* reason) const override {
    return FileImage::Read(name, reason);
  }
  bool ReadStart(const std::string& name, std::span<std::byte> out) const override {
    auto file = ReadableFile::Open(name);
    return file && file->Read(out) == out.size();
  }
  bool Holds(const std::string& name) const override { return FileExists(name); }
  std::optional<std::string> FindBeside(const std::string& name) const override { return FindIgnoringCase(name); }
  std::optional<std::string> FindElsewhere(const std::string&) const override { return std::nullopt; }
  std::optional<std::string> FindGameFile(const std::string& owner, const std::string& inside) const override {
    // What a game holds lies beside the folder "models"; a file leads to no other place.
    std::string folded = '/' + LowerAscii(owner);
    std::replace(folded.begin(), folded.end(), '\\', '/');
    const size_t models = folded.rfind("/models/");
    if (models == std::string::npos || inside.find("..") != std::string::npos) return std::nullopt;
    return FindIgnoringCase(owner.substr(0, models) + inside);
  }
};

}  // namespace

std::optional<std::string> FileSource::FindCompanion(const std::string& name) const {
  auto found = FindBeside(name);
  return found ? found : FindElsewhere(name);
}

std::optional<std::string> FileSource::FindGameFile(const std::string&, const std::string&) const {
  return std::nullopt;
}

const FileSource& DiskFiles() {
  static const Disk disk;
  return disk;
}

}  // namespace tarnwick::core
