#include "core/program_directory.h"

#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#endif

#include "core/paths.h"

namespace tarnwick::core {

namespace fs = std::filesystem;

std::string ProgramDirectory() {
#ifdef _WIN32
  std::wstring name(MAX_PATH, 0);
  while (true) {
    const DWORD size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (size < name.size()) return PathText(fs::path(name.substr(0, size)).parent_path());
    name.resize(name.size() * 2);
  }
#else
  std::error_code error;
  return PathText(fs::read_symlink("/proc/self/exe", error).parent_path());
#endif
}

}  // namespace tarnwick::core
