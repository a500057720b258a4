#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "archives/checksum.h"
#include "archives/vpk_table.h"

namespace tarnwick::bench {

inline constexpr uint32_t Files = 200'000;
inline constexpr uint32_t FilesInAFolder = 40;
inline constexpr uint32_t Extensions = 8;
inline constexpr uint32_t FileSize = 6000;
inline constexpr uint32_t Taken = 2000;  // files with bytes, in a part of their own

inline std::string Name(uint32_t i) {
  constexpr const char* Extension[Extensions] = {"mdl", "vvd", "vtx", "phy", "vmt", "vtf", "wav", "txt"};
  const uint32_t folder = i / FilesInAFolder;
  return "materials/models/props_" + std::to_string(folder / 30) + "/set_" + std::to_string(folder) + "/object_" +
         std::to_string(i / Extensions) + "_part." + Extension[i % Extensions];
}

/// A split archive of 200,000 files; removed at the end.
class LargeArchive {
 public:
  LargeArchive() {
    std::filesystem::create_directories(Folder);
    std::mt19937 random(1);
    std::string data(size_t{Taken} * FileSize, '\0');
    for (char& c : data) c = static_cast<char>(random());
    std::ofstream(Folder / "pak01_000.vpk", std::ios::binary) << data;
    std::map<std::string, std::map<std::string, std::vector<uint32_t>>> lists;
    for (uint32_t i = 0; i < Files; ++i) {
      const std::string name = Name(i);
      lists[name.substr(name.size() - 3)][name.substr(0, name.find_last_of('/'))].push_back(i);
    }
    std::string tree;
    for (const auto& [extension, folders] : lists) {
      tree += extension + '\0';
      for (const auto& [folder, files] : folders) {
        tree += folder + '\0';
        for (const uint32_t i : files) {
          const std::string name = Name(i);
          tree += name.substr(folder.size() + 1, name.size() - folder.size() - 5) + '\0';
          const uint32_t offset = i % Taken * FileSize;
          const std::span bytes(data.data() + offset, FileSize);
          const archives::VpkEntry entry{
              archives::Crc32(std::as_bytes(bytes)), 0, 0, offset, FileSize, archives::VpkEntryEnd};
          tree.append(reinterpret_cast<const char*>(&entry), sizeof(entry));
        }
        tree += '\0';
      }
      tree += '\0';
    }
    tree += '\0';
    const archives::VpkHeader header{archives::VpkSignature, 1, static_cast<uint32_t>(tree.size())};
    std::ofstream file(Folder / "pak01_dir.vpk", std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof(header));
    file << tree;
  }
  ~LargeArchive() {
    std::error_code ignored;
    std::filesystem::remove_all(Folder, ignored);
  }

  const std::filesystem::path Folder = std::filesystem::temp_directory_path() / "tarnwick_archive_bench";
  const std::string Path = (Folder / "pak01_dir.vpk").string();
};

}  // namespace tarnwick::bench
