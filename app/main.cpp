#include <QtGlobal>
#include <string>
#include <vector>

#include "app/kilndesk_app.h"
#include "app/start_switches.h"
#include "core/command_line.h"
#include "core/version.h"
#include "platform/start_message.h"

namespace {

constexpr const char* HelpText =
    "Usage: tarnwick [OPTION] [FILE...]\n"
    "Opens Tarnwick's window, with the files (models, textures, scripts, meshes) in the fields of their page, and\n"
    "archives in \"Game content\".\n"
    "\n"
    "  --help       show this and end\n"
    "  --version    show the version and end\n"
    "  -RegServer, -UnregServer\n"
    "               end without a window (there is nothing to register)\n"
    "  -Embedding, -Automation\n"
    "               run without a window\n"
    "\n"
    "The same work for scripts: tarnwick-cli --help\n";

void Tell(const std::string& text, tarnwick::platform::StartStream stream = tarnwick::platform::StartStream::Output) {
  tarnwick::platform::TellAtStart(text, stream, "Tarnwick");
}

constexpr int WrongUsage = 2;

}  // namespace

int main(int argumentCount, char** arguments) {
  // Whatever needs no window is answered before there is any need of a display.
  const std::vector<std::string> words = tarnwick::core::CommandLine(argumentCount, arguments).Arguments();
  for (const std::string& word : words) {
    if (word == "--help" || word == "-h") {
      Tell(HelpText);
      return 0;
    }
    if (word == "--version") {
      Tell(tarnwick::core::VersionText("tarnwick", std::string("Qt ") + qVersion()) + "\n");
      return 0;
    }
  }
  using tarnwick::app::StartMode;
  const StartMode mode = tarnwick::app::ReadStartSwitches(words);
  if (mode == StartMode::Registration) return 0;
  if (const auto unknown = tarnwick::app::UnknownOption(words)) {
    Tell("Error: unknown option " + *unknown + "; see tarnwick --help\n", tarnwick::platform::StartStream::Error);
    return WrongUsage;
  }
  return tarnwick::app::CKilndeskApp(argumentCount, arguments, mode, tarnwick::app::FilesOnLine(words)).Run();
}
