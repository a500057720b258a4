#pragma once

#include <QIcon>

class QPalette;

namespace tarnwick::view {

/// The signs on the buttons of a player.
enum class PlayerSign { Play, Pause, Back, Forward };

/// A sign in the colour of text on buttons, so that it is seen on dark ones too.
QIcon PlayerIcon(PlayerSign sign, const QPalette& palette);

}  // namespace tarnwick::view
