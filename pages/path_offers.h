#pragma once

#include <string>
#include <vector>

class QLineEdit;

namespace tarnwick::pages {

/// Offers `paths` below `box` as something is typed that is part of one of them; a second call replaces the first
/// one's. The list is as wide as its paths, and Enter in it presses the page's main button unless a path is chosen
/// there.
void OfferPaths(QLineEdit& box, const std::vector<std::string>& paths);

}  // namespace tarnwick::pages
