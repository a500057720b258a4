#pragma once

#include <string>

namespace tarnwick::platform {

/// Where a message goes that a program with a window has before it opens one.
enum class StartStream { Output, Error };

/// Tells `text`, which ends in a line end, to whom starts the program: on the standard stream. On Windows, where a
/// program with a window has no such streams of its own, on the console that it was started from, and where there is
/// none (as from the desktop) in a box with `caption`, which returns when it is closed.
void TellAtStart(const std::string& text, StartStream stream, const std::string& caption);

}  // namespace tarnwick::platform
