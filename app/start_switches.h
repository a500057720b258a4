#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarnwick::app {

/// What the command line asks for.
enum class StartMode {
  Window,        // the main dialog
  Registration,  // nothing to register on this platform: the run ends at once
  Embedded,      // the event loop runs without a window
};

/// Understands the command line, which is given without the program's own name. Case plays no part:
/// - "RegServer" or "UnregServer" behind a "-" or "/", when nothing follows it on the line, is a registration run;
/// - an argument Embedding or Automation behind a "-" or "/" is an embedded run;
/// - anything else is passed over.
StartMode ReadStartSwitches(const std::vector<std::string>& arguments);

/// The files and folders on the command line: all that do not look like a switch, and of those what is there on the
/// disk; whole paths, so that they stand in the fields as a browser gives them; a name
/// such as "game:models/crate.mdl" as it is.
std::vector<std::string> FilesOnLine(const std::vector<std::string>& arguments);

/// The first word that two dashes mark as an option and that is neither an option of the program (those of
/// ReadStartSwitches among them) nor a file on the disk: a slip of the hand. Nothing if there is none.
std::optional<std::string> UnknownOption(const std::vector<std::string>& arguments);

}  // namespace tarnwick::app
