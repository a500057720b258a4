#pragma once

#include <QString>

namespace tarnwick::platform {

/// Opens the text file at `path` in the editor that the user has named: $VISUAL, else $EDITOR, one that needs a
/// terminal in a terminal window of its own; on Windows the program that is registered for editing such files. False if
/// none is named or none starts.
bool StartEditor(const QString& path);

/// Opens it in the editor that every Windows has, for when no program is registered for the file's type. False
/// elsewhere, where there is no such editor.
bool StartSystemEditor(const QString& path);

}  // namespace tarnwick::platform
