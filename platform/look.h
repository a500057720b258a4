#pragma once

#include <QString>

namespace tarnwick::platform {

/// Gives the application the platform's own style, or the one named, with plain buttons in dialogs: the pictures that
/// some styles put on "OK" and "Cancel" belong to no icon set of ours.
void ApplyLook(const QString& style = {});

}  // namespace tarnwick::platform
