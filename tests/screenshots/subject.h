#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "project/model_options.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"

namespace tarnwick::screenshots {

/// What a window needs to be opened; new for each picture. A subject may put values into the settings first.
struct Stage {
  tests::MemorySettings Settings;
  tests::ScriptedDesktop Desktop;
  project::ModelOptions Options;
};

/// A window to take a picture of.
struct Subject {
  std::string Name;  // of the picture's file
  /// Makes the window with what a user would see in it; it is shown and given some time afterwards.
  std::function<std::unique_ptr<QWidget>(Stage&)> Make;
};

/// For the names of tests, which else hold its bytes.
inline void PrintTo(const Subject& subject, std::ostream* out) {
  *out << subject.Name;
}

// One list for each area; a new one is also named in the program's main.
std::vector<Subject> ControlsSubjects();
std::vector<Subject> ModelSubjects();
std::vector<Subject> ShellSubjects();
std::vector<Subject> TextureSubjects();
std::vector<Subject> ViewSubjects();

}  // namespace tarnwick::screenshots
