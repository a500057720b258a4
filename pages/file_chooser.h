#pragma once

#include <string>

class QLineEdit;

namespace tarnwick::platform {
class CDialog;
}

namespace tarnwick::pages {

/// Lets the user choose a file of `filter`, starting on what `edit` names, and puts the choice there. On cancel nothing
/// changes.
void BrowseForFile(platform::CDialog& dialog, QLineEdit& edit, const std::string& title, const std::string& filter);

/// The same for the image of a map.
void BrowseForMap(platform::CDialog& dialog, QLineEdit& edit, const std::string& title);

}  // namespace tarnwick::pages
