#pragma once

#include <QPalette>
#include <QString>

class QWidget;

namespace tarnwick::platform {

/// Gives the application the platform's own style, or the one named, with plain buttons in dialogs: the pictures that
/// some styles put on "OK" and "Cancel" belong to no icon set of ours. From then on the placeholder texts of fields can
/// be read in whatever palette the desktop has or changes to. Where Windows is told to be dark, its style, which cannot
/// be, makes way for one that can.
void ApplyLook(const QString& style = {});

/// Light text on dark grounds, for a style that takes its colours from the palette.
QPalette DarkPalette();

/// The contrast that a placeholder text has at least, by the formula of the Web Content Accessibility Guidelines 2.1.
inline constexpr double ReadableContrast = 4.5;

/// The contrast of two opaque colours by that formula: 1 to 21.
double Contrast(const QColor& a, const QColor& b);

/// The colour for placeholder texts in `palette`: its own if that can be read, else one between its text and its ground
/// that can, else that of its text.
QColor PlaceholderColor(const QPalette& palette, QPalette::ColorGroup group);

/// Shows a read-only field on its surroundings' ground: a text to read, not a field to type into.
void ShowAsReadOnly(QWidget& field);

}  // namespace tarnwick::platform
