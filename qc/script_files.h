#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "core/file_image.h"
#include "core/trouble.h"
#include "qc/messages.h"
#include "qc/words.h"

namespace tarnwick::qc {

/// A file whose words a script consists of.
struct ScriptFile {
  std::string Path;   // as it is opened
  std::string Shown;  // in messages: its last name for the script itself, for others the name that $include gave
  core::FileImage Image;
};

/// What brought words into a script from elsewhere.
struct Origin {
  Place At;                // of the $include, or of the macro's use
  std::string_view Macro;  // its name; empty for an include
};

/// The files and texts that the words of one script lie in. Moving it does not move them.
struct ScriptFiles {
  std::vector<ScriptFile> Files;  // the script itself is the first
  std::vector<Origin> Origins;
  std::deque<std::string> Made;  // texts that stand in no file: words with a variable's or an argument's value in them

  std::string_view Text(size_t file) const {
    const auto bytes = Files[file].Image.Bytes();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }
  std::string_view Make(std::string text) { return Made.emplace_back(std::move(text)); }
};

/// A message as a compiler prints it: `walker.qc:12:8: error: ...`, and a line more for each script and macro that the
/// place was reached by. No line end behind the last.
std::string MessageText(const ScriptFiles& files, const Message& message);

/// A message as the rooms above hand troubles on.
core::Trouble MessageTrouble(const ScriptFiles& files, const Message& message);

}  // namespace tarnwick::qc
