#pragma once

#include <string>
#include <string_view>

namespace tarnwick::platform {

/// The command that starts a browser, from a command with a marker for the address: what stands in front of the
/// marker `%1`, with the quote in front of that if quotes stand round it. Without a marker it is the whole command.
///
///     BrowserCommand("\"C:\\b.exe\" -url \"%1\"")  // "C:\b.exe" -url
std::string BrowserCommand(std::string_view command);

/// Starts the browser that the user's system names, with `address` as its last argument, and leaves it running: on
/// Windows the program for .htm files, elsewhere the first of those in $BROWSER, x-www-browser and sensible-browser
/// that is installed. False if there is none.
bool StartBrowser(const std::string& address);

}  // namespace tarnwick::platform
