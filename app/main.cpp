#include <QtGlobal>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "app/kilndesk_app.h"
#include "app/start_switches.h"
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

}  // namespace

int main(int argumentCount, char** arguments) {
  // Whatever needs no window is answered before there is any need of a display.
  for (int i = 1; i < argumentCount; ++i) {
    if (std::strcmp(arguments[i], "--help") == 0 || std::strcmp(arguments[i], "-h") == 0) {
      std::fputs(HelpText, stdout);
      return 0;
    }
    if (std::strcmp(arguments[i], "--version") == 0) {
      std::puts(tarnwick::core::VersionText("tarnwick", std::string("Qt ") + qVersion()).c_str());
      return 0;
    }
  }
  using tarnwick::app::StartMode;
  const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
  const StartMode mode = tarnwick::app::ReadStartSwitches(words);
  if (mode == StartMode::Registration) return 0;
  return tarnwick::app::CKilndeskApp(argumentCount, arguments, mode, tarnwick::app::FilesOnLine(words)).Run();
}
