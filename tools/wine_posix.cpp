#include "tools/wine_posix.h"

#ifndef _WIN32

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view InstallAdvice =
    "Install it (on Debian: apt-get install wine), or name the program to use in the configuration.";
constexpr std::string_view Install32Advice =
    "Install the package wine32 (on Debian: dpkg --add-architecture i386 && apt-get update && apt-get install "
    "wine32:i386), or name a Wine that runs 32-bit programs in the configuration.";

constexpr std::string_view ServerNames[] = {"wineserver",     "wineserver32", "wineserver64", "services.exe",
                                            "winedevice.exe", "plugplay.exe", "explorer.exe", "rpcss.exe",
                                            "svchost.exe",    "wineboot.exe", "tabtip.exe"};

bool IsExecutable(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

bool AnyExists(const fs::path& folder, std::initializer_list<const char*> names) {
  std::error_code error;
  return std::any_of(names.begin(), names.end(), [&](const char* name) { return fs::exists(folder / name, error); });
}

/// Whether the Wine at `wine` runs 32-bit programs. True where its files are laid out in a way that is not known: then
/// Wine itself will tell.
bool Runs32Bit(const std::string& wine) {
  std::error_code error;
  fs::path real = fs::canonical(wine, error);
  if (error) real = wine;
  const fs::path prefix = real.parent_path().parent_path();
  // Debian: the loader of each width has a package of its own; `wine` is a script that takes what is there.
  if (AnyExists("/usr/lib/wine", {"wine64"}) && (prefix == "/usr" || prefix == "/usr/lib")) {
    return AnyExists("/usr/lib", {"wine/wine", "i386-linux-gnu/wine"});
  }
  // As Wine itself installs: modules of each width lie side by side below one folder.
  if (AnyExists(prefix, {"lib/wine/x86_64-windows", "lib64/wine/x86_64-windows"})) {
    return AnyExists(prefix, {"lib/wine/i386-windows", "lib32/wine/i386-windows"});
  }
  return true;
}

std::optional<std::string> FindWine(const std::string& configured) {
  if (!configured.empty()) {
    if (configured.find('/') == std::string::npos) return FindInPath(configured);
    return IsExecutable(configured) ? std::optional(configured) : std::nullopt;
  }
  for (const char* name : {"wine", "wine64"}) {
    if (auto found = FindInPath(name)) return found;
  }
  for (const char* path : {"/usr/lib/wine/wine", "/usr/lib/wine/wine64", "/opt/wine-stable/bin/wine"}) {
    if (IsExecutable(path)) return path;
  }
  return std::nullopt;
}

}  // namespace

const std::span<const std::string_view> WineServers = ServerNames;

WineChoice ChooseWine(ProgramKind kind, const std::string& program, const std::string& configured) {
  if (kind == ProgramKind::Dos) return {{}, program + " is a DOS program, not a Windows program."};
  const auto wine = FindWine(configured);
  if (!wine) {
    if (configured.empty()) {
      return {{},
              program + " is a Windows program, and Wine, which runs such programs, was not found. " +
                  std::string(InstallAdvice)};
    }
    return {{},
            program + " is a Windows program, and the Wine that is configured for it, " + configured +
                ", is not there or cannot be run."};
  }
  if (kind == ProgramKind::Windows32 && !Runs32Bit(*wine)) {
    return {{},
            program + " is a 32-bit Windows program, and " + *wine + " runs 64-bit programs only. " +
                std::string(Install32Advice)};
  }
  return {*wine, {}};
}

std::optional<std::string> FindInPath(const std::string& name) {
  const char* variable = std::getenv("PATH");
  std::string_view folders = variable == nullptr ? "/usr/local/bin:/usr/bin:/bin" : variable;
  while (true) {
    const size_t end = folders.find(':');
    const std::string folder(folders.substr(0, end));
    // An empty entry means the current folder.
    const std::string path = (folder.empty() ? "." : folder) + "/" + name;
    if (IsExecutable(path)) return path;
    if (end == std::string_view::npos) return std::nullopt;
    folders.remove_prefix(end + 1);
  }
}

}  // namespace tarnwick::tools

#endif
