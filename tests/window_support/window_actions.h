#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QPlainTextEdit>
#include <functional>
#include <string>
#include <vector>

namespace tarnwick::tests {

/// The control of the form with that object name; the test fails and stops if there is none.
template <typename Control>
Control& ControlOf(QWidget& window, const char* name) {
  auto* control = window.findChild<Control*>(name);
  if (control == nullptr) {
    ADD_FAILURE() << "no control " << name;
    std::abort();
  }
  return *control;
}

/// Presses the button with that object name with the mouse.
void Click(QWidget& window, const char* button);

/// Drops files on the middle of `target` the way the platform does.
void Drop(QWidget& target, const std::vector<std::string>& paths);

/// The text that a field holds of a file or folder that was dropped on it: with the platform's own separators.
std::string Dropped(const std::string& path);

/// Lets events pass until `condition` holds; false after a minute.
bool WaitUntil(const std::function<bool()>& condition);

/// Has `answer` called with the modal dialog that the next action opens. `answer` must close it.
void WhenModalOpens(const std::function<void(QWidget& dialog)>& answer);

/// The colour of the first line in the box that begins with `start`; invalid if it has none of its own.
QColor ColorOfLine(const QPlainTextEdit& box, const char* start);

}  // namespace tarnwick::tests
