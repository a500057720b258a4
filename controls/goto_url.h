#pragma once

#include <string>

class QWidget;

namespace tarnwick::controls {

/// Opens `address`, which may stand in double quotes, in the handler that the system has for it, or else in the web
/// browser. It goes through the desktop of the dialog that `control` stands in. False if nothing opens it. With
/// `newWindow` a handler that can is asked for a window of its own.
bool GotoUrl(const QWidget& control, const std::string& address, bool newWindow = false);

}  // namespace tarnwick::controls
