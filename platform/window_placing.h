#pragma once

class QWidget;

namespace tarnwick::platform {

/// Moves `window` so that its centre lies on the centre of `reference`, size unchanged, and brings it to the top. The
/// window is kept on the reference's screen.
void CenterOver(const QWidget& reference, QWidget& window);

/// Makes `window` no larger than the free part of its screen, its frame included. What then does not fit into it is
/// scrolled. Called before the window is shown for the first time.
void FitOnScreen(QWidget& window);

/// Moves `window` so that all of it, its title bar above all, lies on the free part of its screen.
void KeepOnScreen(QWidget& window);

}  // namespace tarnwick::platform
