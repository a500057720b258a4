#pragma once

#include <QString>

class QWidget;

namespace tarnwick::platform {

/// Gives the application the platform's own style, or the one named, with plain buttons in dialogs: the pictures that
/// some styles put on "OK" and "Cancel" belong to no icon set of ours.
void ApplyLook(const QString& style = {});

/// Shows a read-only field on its surroundings' ground: a text to read, not a field to type into.
void ShowAsReadOnly(QWidget& field);

}  // namespace tarnwick::platform
