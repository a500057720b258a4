#include "tools/vtf_export.h"

#include "core/paths.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {

namespace {

constexpr std::string_view TgaEnding = "tga";

/// `path` up to its last dot, the dot included; with a dot added if its file name has none.
std::string Stem(std::string_view path) {
  const size_t dot = core::LastComponent(path).rfind('.');
  if (dot == std::string_view::npos) return std::string(path) + ".";
  return std::string(path.substr(0, core::DirectoryWithSeparator(path).size() + dot + 1));
}

}  // namespace

std::string SuggestOutputName(std::string_view input) {
  return Stem(input) + std::string(TgaEnding);
}

std::string Vtf2tgaCommandLine(std::string_view sdkDirectory, std::string_view input, std::string_view tgaPath) {
  return SdkToolPath(sdkDirectory, Vtf2tga) + " -nopause -i \"" + std::string(input) + "\" -o \"" +
         std::string(tgaPath) + "\"";
}

}  // namespace tarnwick::tools
