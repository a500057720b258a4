#pragma once

class QWidget;

namespace tarnwick::platform {

/// Moves `window` so that its centre lies on the centre of `reference`, size unchanged, and brings it to the top. The
/// window is kept on the reference's screen.
void CenterOver(const QWidget& reference, QWidget& window);

}  // namespace tarnwick::platform
