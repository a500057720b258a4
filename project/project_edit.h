#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "project/model_project.h"

namespace tarnwick::project {

// Single values of a project under the keys of its file, told without the section: "Model File", "Model Options/Scale",
// "Animation0/Name", "Animation0/Command1", "Animation0/Event2/frame"; one with its section is taken too. Commands have
// their double quotes.

/// The value of a key; nothing if the project has no such key.
std::optional<std::string> GetProjectValue(const ModelProject& project, std::string_view key);

/// A value to be set under a key.
struct ProjectChange {
  std::string Key;
  std::string Value;
};

/// Sets several values at once, in any order. The first field of the entry behind a list's last one, and the command or
/// event behind a sequence's last one, make a new entry. A model type and a rotation are told by number or by name; an
/// attachment without translation or rotation gets "0 0 0". Gives the reason in words, with the project as it was, if
/// there is no such key, a value is none of its kind, or a project file could not hold it.
std::optional<std::string> SetProjectValues(ModelProject& project, std::span<const ProjectChange> changes);

/// Removes an entry ("Animation1", "Gib0", "Animation0/Command2", "Animation0/Event1"); the ones behind it move up.
/// Gives the reason in words if there is no such entry.
std::optional<std::string> RemoveProjectEntry(ModelProject& project, std::string_view entry);

}  // namespace tarnwick::project
