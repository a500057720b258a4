#pragma once

#include <string>

class QLineEdit;

namespace tarnwick::platform {
class CDialog;
}

namespace tarnwick::pages {

/// Lets the user choose the image of a map, starting on what `edit` names, and puts the choice there. On cancel nothing
/// changes.
void BrowseForMap(platform::CDialog& dialog, QLineEdit& edit, const std::string& title);

}  // namespace tarnwick::pages
