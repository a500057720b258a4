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

process::Command Vtf2tgaCommand(std::string_view sdkDirectory, std::string_view input, std::string_view tgaPath) {
  process::Command command{SdkToolPath(sdkDirectory, Vtf2tga)};
  command.Word("-nopause").Word("-i").InQuotes(input).Word("-o").InQuotes(tgaPath);
  return command;
}

}  // namespace tarnwick::tools
