#pragma once

#include <string>
#include <vector>

#include "core/app_settings.h"
#include "project/model_project.h"
#include "project/profile_store.h"

namespace tarnwick::project {

/// Puts the project into the store, and nothing else is in the store afterwards: no key of a removed entry and none of
/// a project that was there before. Real numbers are kept with two decimals.
void SaveProjectToStore(const ModelProject& project, ProfileStore& store);

/// The same, and the form's fields and most options into the settings, from which the program starts the next time.
/// This is what a compile, the save button and the program's end do.
void SaveProjectToStore(const ModelProject& project, ProfileStore& store, core::AppSettings& settings);

/// Rebuilds the project from the store: all fields that a file holds, and all lists anew. A numbered list ends at its
/// first missing number. `materialDirectory` and `configFile` stay as they are.
///
/// A sequence takes 20 commands and 20 events; `notes`, if given, takes a sentence for the user for each sequence that
/// had more.
void LoadProjectFromStore(const ProfileStore& store, ModelProject& project, std::vector<std::string>* notes = nullptr);

/// What the program starts with: the form's fields and the options as the settings hold them, the lists empty.
void LoadFormFromSettings(const core::AppSettings& settings, ModelProject& project);
void LoadOptionsFromSettings(const core::AppSettings& settings, ModelOptions& options);

}  // namespace tarnwick::project
