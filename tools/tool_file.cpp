#include "tools/tool_file.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "core/paths.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ProgramEnding = ".exe";

// From the published layout of portable executables: the DOS header holds the offset of the signature "PE\0\0", behind
// which the file header begins with the machine.
constexpr std::streamoff SignatureOffsetField = 0x3C;
constexpr uint16_t MachineI386 = 0x014C;
constexpr uint16_t MachineAmd64 = 0x8664;

bool EndsInExe(std::string_view path) {
  return path.size() > ProgramEnding.size() &&
         core::EqualIgnoringCase(path.substr(path.size() - ProgramEnding.size()), ProgramEnding);
}

/// Reads `size` bytes at `offset`; false if the file is shorter.
bool ReadAt(std::ifstream& file, std::streamoff offset, void* target, std::streamsize size) {
  file.clear();
  return file.seekg(offset) && file.read(static_cast<char*>(target), size);
}

}  // namespace

bool ToolExists(const std::string& path) {
  std::error_code error;
  return fs::exists(core::NativePath(path), error) || FindToolFile(path).has_value();
}

std::optional<std::string> FindToolFile(const std::string& path) {
  if (core::FileExists(path)) return path;
#ifdef _WIN32
  if (!EndsInExe(path) && core::FileExists(path + std::string(ProgramEnding))) return path + std::string(ProgramEnding);
  return std::nullopt;
#else
  if (auto found = core::FindIgnoringCase(path)) return found;
  if (!EndsInExe(path)) return core::FindIgnoringCase(path + std::string(ProgramEnding));
  return core::FindIgnoringCase(path.substr(0, path.size() - ProgramEnding.size()));
#endif
}

ProgramKind ReadProgramKind(const std::string& path) {
  std::ifstream file(core::NativePath(path), std::ios::binary);
  std::array<char, 2> magic{};
  if (!ReadAt(file, 0, magic.data(), 2) || std::memcmp(magic.data(), "MZ", 2) != 0) return ProgramKind::Native;
  uint32_t signatureOffset = 0;
  std::array<char, 4> signature{};
  uint16_t machine = 0;
  if (!ReadAt(file, SignatureOffsetField, &signatureOffset, sizeof signatureOffset) ||
      !ReadAt(file, signatureOffset, signature.data(), 4) || std::memcmp(signature.data(), "PE\0\0", 4) != 0 ||
      !ReadAt(file, std::streamoff{signatureOffset} + 4, &machine, sizeof machine)) {
    return ProgramKind::Dos;
  }
  if (machine == MachineI386) return ProgramKind::Windows32;
  return machine == MachineAmd64 ? ProgramKind::Windows64 : ProgramKind::OtherWindows;
}

}  // namespace tarnwick::tools
