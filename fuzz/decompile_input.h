#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tarnwick::fuzz {

/// One input of the decompile target: a byte with the job's options, then each of the model's files behind the number
/// of its bytes.
struct DecompileInput {
  static constexpr std::array<std::string_view, 4> Extensions = {".mdl", ".dx90.vtx", ".vvd", ".ani"};

  uint8_t Options = 0;
  std::array<std::string, Extensions.size()> Files;  // an empty one is not there

  /// Every text of bytes is an input: a number that is too high takes what is left.
  static DecompileInput Unpack(std::string_view bytes) {
    DecompileInput input;
    if (bytes.empty()) return input;
    input.Options = static_cast<uint8_t>(bytes[0]);
    bytes.remove_prefix(1);
    for (std::string& file : input.Files) {
      uint32_t size = 0;
      if (bytes.size() < sizeof(size)) break;
      std::memcpy(&size, bytes.data(), sizeof(size));
      bytes.remove_prefix(sizeof(size));
      file = bytes.substr(0, size);
      bytes.remove_prefix(file.size());
    }
    return input;
  }

  std::string Pack() const {
    std::string bytes(1, static_cast<char>(Options));
    for (const std::string& file : Files) {
      const auto size = static_cast<uint32_t>(file.size());
      bytes.append(reinterpret_cast<const char*>(&size), sizeof(size));
      bytes += file;
    }
    return bytes;
  }
};

}  // namespace tarnwick::fuzz
