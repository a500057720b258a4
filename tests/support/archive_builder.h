#pragma once

#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/scratch_folder.h"

namespace tarnwick::tests {

template <typename T>
void AppendValue(std::string& bytes, T value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof(T));
}

/// The CRC-32 of a text, bit by bit.
inline uint32_t PlainCrc(std::string_view text) {
  uint32_t crc = 0xFFFFFFFF;
  for (const char c : text) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0u);
  }
  return ~crc;
}

/// A file of an archive that a test makes.
struct PackedFile {
  std::string Name;  // "folder/stem.ext"
  std::string Bytes;
  size_t Preload = 0;      // bytes that stand in the tree
  uint16_t Part = 0x7FFF;  // the archive that has the rest
  bool WrongCrc = false;
};

/// The files of a folder as an archive has them below `name`.
inline std::vector<PackedFile> PackedFolder(const ScratchFolder& folder, const std::string& name) {
  std::vector<PackedFile> files;
  for (const std::string& file : folder.Files()) {
    std::ifstream stream(folder.Path(file), std::ios::binary);
    files.push_back({.Name = name + '/' + file, .Bytes = {std::istreambuf_iterator<char>(stream), {}}});
  }
  return files;
}

/// Writes VPK archives: the bytes of the directory file and of its parts.
struct VpkBuilder {
  uint32_t Version = 1;
  std::vector<PackedFile> Files;

  std::string Directory = {};
  std::map<uint16_t, std::string> Parts = {};

  VpkBuilder& Build() {
    std::string own;                                                  // what lies behind the tree
    std::map<std::string, std::map<std::string, std::string>> lists;  // by extension and folder: names and entries
    for (const PackedFile& file : Files) {
      const size_t slash = file.Name.find_last_of('/');
      const std::string folder = slash == std::string::npos ? " " : file.Name.substr(0, slash);
      std::string stem = slash == std::string::npos ? file.Name : file.Name.substr(slash + 1);
      std::string extension = " ";
      if (const size_t dot = stem.find_last_of('.'); dot != std::string::npos) {
        extension = stem.substr(dot + 1);
        stem.resize(dot);
      }
      if (stem.empty()) stem = " ";
      std::string& data = file.Part == 0x7FFF ? own : Parts[file.Part];
      std::string& list = lists[extension][folder];
      list += stem + '\0';
      AppendValue(list, PlainCrc(file.Bytes) ^ (file.WrongCrc ? 1 : 0));
      AppendValue(list, static_cast<uint16_t>(file.Preload));
      AppendValue(list, file.Part);
      AppendValue(list, static_cast<uint32_t>(data.size()));
      AppendValue(list, static_cast<uint32_t>(file.Bytes.size() - file.Preload));
      AppendValue(list, uint16_t{0xFFFF});
      list += file.Bytes.substr(0, file.Preload);
      data += file.Bytes.substr(file.Preload);
    }
    std::string tree;
    for (const auto& [extension, folders] : lists) {
      tree += extension + '\0';
      for (const auto& [folder, list] : folders) tree += folder + '\0' + list + '\0';
      tree += '\0';
    }
    tree += '\0';
    Directory.clear();
    for (const uint32_t value : {uint32_t{0x55AA1234}, Version, static_cast<uint32_t>(tree.size())}) {
      AppendValue(Directory, value);
    }
    if (Version == 2) {
      for (const uint32_t value : {static_cast<uint32_t>(own.size()), 0u, 48u, 0u}) AppendValue(Directory, value);
    }
    Directory += tree + own;
    if (Version == 2) Directory += std::string(48, '\x5A');
    return *this;
  }
};

/// The bytes of a GMA addon.
struct GmaBuilder {
  uint8_t Version = 3;
  std::vector<PackedFile> Files;

  std::string Build() const {
    std::string bytes = "GMAD";
    AppendValue(bytes, Version);
    AppendValue(bytes, uint64_t{0x110000100000000});
    AppendValue(bytes, uint64_t{1700000000});
    if (Version > 1) bytes += std::string("needed\0", 7) + '\0';
    bytes += std::string("An addon\0{\"type\":\"model\"}\0Somebody\0", 35);
    AppendValue(bytes, int32_t{1});
    uint32_t number = 0;
    for (const PackedFile& file : Files) {
      AppendValue(bytes, ++number);
      bytes += file.Name + '\0';
      AppendValue(bytes, static_cast<int64_t>(file.Bytes.size()));
      AppendValue(bytes, PlainCrc(file.Bytes) ^ (file.WrongCrc ? 1 : 0));
    }
    AppendValue(bytes, uint32_t{0});
    for (const PackedFile& file : Files) bytes += file.Bytes;
    AppendValue(bytes, PlainCrc(bytes));
    return bytes;
  }
};

}  // namespace tarnwick::tests
