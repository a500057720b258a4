#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>

class QWidget;

namespace tarnwick::platform {

/// Moves `window` so that its centre lies on the centre of `reference`, size unchanged, and brings it to the top. The
/// window is kept on the reference's screen.
void CenterOver(const QWidget& reference, QWidget& window);

/// Makes `window` no larger than the free part of its screen, its frame included. What then does not fit into it is
/// scrolled. Called before the window is shown for the first time.
void FitOnScreen(QWidget& window);

/// Where the contents of a window, now at `client`, stand so that they lie in `room` with a frame of that width; a
/// window that is too large has its title bar in the room.
QPoint PlaceInRoom(const QRect& client, const QMargins& frame, const QRect& room);

/// Moves `window` so that all of it, its title bar above all, lies on the free part of its screen.
void KeepOnScreen(QWidget& window);

}  // namespace tarnwick::platform
