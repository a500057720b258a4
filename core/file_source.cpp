#include "core/file_source.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/file_store.h"
#include "core/folder_reader.h"
#include "core/paths.h"
#include "core/readable_file.h"
#include "core/whole_path.h"

namespace tarnwick::core {

namespace fs = std::filesystem;

namespace {

class Disk : public FileStore {
 public:
  std::optional<FileImage> Read(const std::string& name, std::string* reason) const override {
    return FileImage::Read(name, reason);
  }
  std::optional<FileImage> ReadIf(const std::string& name, size_t start, const WantsFile& wants,
                                  std::string* reason) const override {
    return FileImage::ReadIf(name, start, wants, reason);
  }
  bool ReadStart(const std::string& name, std::span<std::byte> out) const override {
    auto file = ReadableFile::Open(name);
    return file && file->Read(out) == out.size();
  }
  bool Holds(const std::string& name) const override { return FileExists(name); }
  std::optional<std::string> FindBeside(const std::string& name) const override { return FindIgnoringCase(name); }

  std::optional<OutputFile> Create(std::string path, std::string* reason) override {
    return OutputFile::Create(std::move(path), reason);
  }
  std::string MakeFolder(const std::string& path) override {
    std::error_code error;
    fs::create_directories(NativePath(path), error);
    return error ? error.message() : std::string();
  }
  std::string Remove(const std::string& path) override {
    std::error_code error;
    return fs::remove(NativePath(path), error) ? std::string() : error.message();
  }
  bool HoldsFolder(const std::string& path) const override {
    std::error_code error;
    return fs::is_directory(NativePath(path), error);
  }
  std::vector<std::string> NamesIn(const std::string& folder, size_t most) const override {
    std::vector<std::string> names;
    FolderReader reader(NativePath(folder));
    while (names.size() < most && reader.Next()) names.push_back(reader.Name());
    std::sort(names.begin(), names.end());
    return names;
  }
  std::vector<std::string> FilesBelow(const std::string& folder) const override {
    std::vector<std::string> files;
    std::error_code error;
    const auto any = [](std::string_view) { return true; };
    for (FileBelow& file : core::FilesBelow(NativePath(folder), true, any, error)) {
      std::string& name = files.emplace_back(std::move(file.Below));
      if (PathSeparator != '/') std::replace(name.begin(), name.end(), PathSeparator, '/');
    }
    std::sort(files.begin(), files.end());
    return files;
  }
  bool LiesIn(const std::string& path, const std::string& folder) const override {
    std::error_code error;
    const auto whole = RealPathOfNew(NativePath(path), error);
    const auto base = RealPathOfNew(NativePath(folder), error);
    const auto [end, nothing] = std::mismatch(base.begin(), base.end(), whole.begin(), whole.end());
    return !error && end == base.end();
  }
};

}  // namespace

std::optional<FileImage> FileSource::ReadIf(const std::string& name, size_t start, const WantsFile& wants,
                                            std::string* reason) const {
  std::vector<std::byte> head(start);
  if (ReadStart(name, head) && !wants(head)) return std::nullopt;
  return Read(name, reason);
}

std::optional<std::string> FileSource::FindCompanion(const std::string& name) const {
  auto found = FindBeside(name);
  return found ? found : FindElsewhere(name);
}

std::optional<std::string> FileSource::FindGameFile(const std::string&, const std::string&) const {
  return std::nullopt;
}

std::optional<std::string> FileStore::FindElsewhere(const std::string&) const {
  return std::nullopt;
}

std::optional<std::string> FileStore::FindGameFile(const std::string& owner, const std::string& inside) const {
  // What a game holds lies beside the folder "models"; a file leads to no other place.
  std::string folded = '/' + LowerAscii(owner);
  std::replace(folded.begin(), folded.end(), '\\', '/');
  const size_t models = folded.rfind("/models/");
  if (models == std::string::npos || inside.find("..") != std::string::npos) return std::nullopt;
  return FindBeside(owner.substr(0, models) + inside);
}

FileStore& DiskStore() {
  static Disk disk;
  return disk;
}

const FileSource& DiskFiles() {
  return DiskStore();
}

}  // namespace tarnwick::core
