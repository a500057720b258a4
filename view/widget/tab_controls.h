#pragma once

#include <QString>
#include <string>

class QComboBox;
class QScrollArea;
class QSlider;
class QWidget;

namespace tarnwick::view {

// What the tabs of a viewer are made of.

/// A slider that lies, called `name` for those who hear it.
QSlider* MakeSlider(const QString& name, int minimum, int maximum);
/// Sets a value without telling anybody.
void SetQuietly(QSlider& slider, int value);
void SetQuietly(QComboBox& box, int index);
/// Puts `content` where it can be scrolled.
QScrollArea* Scrolled(QWidget* content);
/// Lets a box be narrower than its longest text.
void Narrow(QComboBox& box);
/// Four digits, as the user writes numbers.
QString Number(float value);
/// The name, or `otherwise` for an empty one.
QString Named(const std::string& name, const QString& otherwise);

}  // namespace tarnwick::view
