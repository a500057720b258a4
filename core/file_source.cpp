#include "core/file_source.h"

#include <fstream>

#include "core/paths.h"

namespace tarnwick::core {

namespace {

class Disk : public FileSource {
 public:
  std::optional<FileImage> Read(const std::string& name, std::string* reason) const override {
    return FileImage::Read(name, reason);
  }
  bool ReadStart(const std::string& name, std::span<std::byte> out) const override {
    std::ifstream file(NativePath(name), std::ios::binary);
    file.read(reinterpret_cast<char*>(out.data()), static_cast<std::streamsize>(out.size()));
    return static_cast<bool>(file);
  }
  bool Holds(const std::string& name) const override { return FileExists(name); }
  std::optional<std::string> FindBeside(const std::string& name) const override { return FindIgnoringCase(name); }
  std::optional<std::string> FindElsewhere(const std::string&) const override { return std::nullopt; }
};

}  // namespace

std::optional<std::string> FileSource::FindCompanion(const std::string& name) const {
  auto found = FindBeside(name);
  return found ? found : FindElsewhere(name);
}

const FileSource& DiskFiles() {
  static const Disk disk;
  return disk;
}

}  // namespace tarnwick::core
