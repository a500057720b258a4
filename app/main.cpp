#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "app/kilndesk_app.h"
#include "app/start_switches.h"

namespace {

constexpr const char* HelpText =
    "Usage: tarnwick [OPTION]\n"
    "Opens Tarnwick's window. It takes no files: drop them on the window.\n"
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
      std::puts("tarnwick " TARNWICK_VERSION);
      return 0;
    }
  }
  using tarnwick::app::StartMode;
  const StartMode mode =
      tarnwick::app::ReadStartSwitches(std::vector<std::string>(arguments + 1, arguments + argumentCount));
  if (mode == StartMode::Registration) return 0;
  return tarnwick::app::CKilndeskApp(argumentCount, arguments, mode).Run();
}
