#include "core/file_source.h"

#include "core/paths.h"

namespace tarnwick::core {

namespace {

class Disk : public FileSource {
 public:
  std::optional<FileImage> Read(const std::string& name, std::string* reason) const override {
    return FileImage::Read(name, reason);
  }
  std::optional<std::string> FindCompanion(const std::string& name) const override { return FindIgnoringCase(name); }
};

}  // namespace

const FileSource& DiskFiles() {
  static const Disk disk;
  return disk;
}

}  // namespace tarnwick::core
