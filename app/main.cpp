#ifdef _WIN32
#include <windows.h>
#endif

#include <QtGlobal>
#include <cstdio>
#include <string>
#include <vector>

#include "app/kilndesk_app.h"
#include "app/start_switches.h"
#include "core/command_line.h"
#include "core/version.h"

namespace {

constexpr const char* HelpText =
    "Usage: tarnwick [OPTION] [FILE...]\n"
    "Opens Tarnwick's window, with the files (models, textures, scripts, meshes) in the fields of their page.\n"
    "\n"
    "  --help       show this and end\n"
    "  --version    show the version and end\n"
    "  -RegServer, -UnregServer\n"
    "               end without a window (there is nothing to register)\n"
    "  -Embedding, -Automation\n"
    "               run without a window\n"
    "\n"
    "The same work for scripts: tarnwick-cli --help\n";

/// Prints on the console that the program was started from: on Windows a program with a window has none of its own.
void Print(const std::string& text) {
#ifdef _WIN32
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  const bool isRedirected = output != nullptr && GetFileType(output) != FILE_TYPE_UNKNOWN;
  if (!isRedirected && AttachConsole(ATTACH_PARENT_PROCESS)) std::freopen("CONOUT$", "w", stdout);
#endif
  std::fputs(text.c_str(), stdout);
  std::fflush(stdout);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  // Whatever needs no window is answered before there is any need of a display.
  const std::vector<std::string> words = tarnwick::core::CommandLine(argumentCount, arguments).Arguments();
  for (const std::string& word : words) {
    if (word == "--help" || word == "-h") {
      Print(HelpText);
      return 0;
    }
    if (word == "--version") {
      Print(tarnwick::core::VersionText("tarnwick", std::string("Qt ") + qVersion()) + "\n");
      return 0;
    }
  }
  using tarnwick::app::StartMode;
  const StartMode mode = tarnwick::app::ReadStartSwitches(words);
  if (mode == StartMode::Registration) return 0;
  return tarnwick::app::CKilndeskApp(argumentCount, arguments, mode, tarnwick::app::FilesOnLine(words)).Run();
}
