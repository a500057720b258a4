#pragma once

class QWidget;

namespace tarnwick::pages {

/// Fills `page` with a plain word that `what` is not built yet.
void ShowComingLater(QWidget& page, const char* what);

}  // namespace tarnwick::pages
