#include "core/version.h"

#include <tarnwick_commit.h>

namespace tarnwick::core {

namespace {

#if defined(__clang__)
constexpr const char* Compiler = "clang " __clang_version__;
#elif defined(__GNUC__)
constexpr const char* Compiler = "GCC " __VERSION__;
#else
constexpr const char* Compiler = "an unknown compiler";
#endif

}  // namespace

std::string VersionText(std::string_view program, std::string_view libraries) {
  std::string text(program);
  text += " " TARNWICK_VERSION "\ncommit " TARNWICK_COMMIT "\nbuilt with ";
  text += Compiler;
  if (!libraries.empty()) {
    text += '\n';
    text += libraries;
  }
  return text;
}

}  // namespace tarnwick::core
