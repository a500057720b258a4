// Looks for the model's name in any bytes as a script, which may include itself.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tools/qc_model_name.h"

namespace {

namespace fs = std::filesystem;

/// A folder in memory where the system has such a place, removed at the end of the process.
struct ScriptFolder {
  ScriptFolder() { fs::create_directories(Path); }
  ~ScriptFolder() { fs::remove_all(Path); }

  fs::path Path = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                  ("tarnwick-fuzz-" + std::to_string(::getpid()));
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const ScriptFolder folder;
  const fs::path script = folder.Path / "a.qc";
  std::ofstream(script, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  const auto name = tarnwick::tools::FindModelName(script.string());
  // A name is made of what the script says.
  if (name && name->size() > size) std::abort();
  return 0;
}
