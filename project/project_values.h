#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "project/model_project.h"
#include "project/project_keys.h"

namespace tarnwick::project {

/// One value of a project, as its file names it.
struct ProjectValue {
  std::string Key;         // without the section: "Animation0/Name"
  std::string_view Label;  // as the form or the editor calls the field
  ValueKind Kind;
  std::string Text;        // numbers as the file holds them; commands with their double quotes
  char QuoteStandIn = 0;   // what stands for a double quote in the file; 0 if the value can hold none
  bool NeedsText = false;  // a list would end here if the value were empty
};

/// Hands every value that a project's file holds to `take`, from the form's top to its lists, list by list.
void ForEachProjectValue(const ModelProject& project, const std::function<void(const ProjectValue&)>& take);

}  // namespace tarnwick::project
