#pragma once

#include <string>

#include "core/report.h"
#include "project/model_project.h"
#include "project/profile_store.h"

namespace tarnwick::project {

/// The filter, and the title, of the choosers for a project file.
inline constexpr const char* ProjectFileFilter = "Tarnwick CFG File (*.sc)|*.sc|";
inline constexpr const char* ProjectFileTitle = "Name of Config File";

/// What the load button does once a file is chosen: `configFile` takes the path, the store takes the file, and the
/// project is rebuilt from the store.
///
/// A file that cannot be read, or in which no line belongs to a project, is shown as an error box that names it and the
/// reason; project and store then stay as they were, and false is returned. What a sound project leaves out of a
/// damaged file (commands beyond the limit, lines behind an empty one or behind a gap in the numbers, damaged lines) is
/// shown as one warning box, and `whole`, if given, tells whether there is none: saving over the file would then lose
/// nothing. The box also tells of an index that nothing stands behind, such as a model type 7; it is kept as it is.
bool OpenProjectFile(const std::string& path, ModelProject& project, ProfileStore& store, core::Report& report,
                     bool* whole = nullptr);

/// What the save button does once a file is chosen (and the project is saved into the settings): `configFile` takes the
/// path, and the project goes through the store into the file, in one step over an older file.
///
/// A value that the file cannot hold, or a file that cannot be written, is shown as an error box that names it and the
/// reason; an older file then stays as it was, and false is returned.
bool SaveProjectFile(const std::string& path, ModelProject& project, ProfileStore& store, core::Report& report);

}  // namespace tarnwick::project
