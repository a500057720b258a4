#pragma once

#include <optional>
#include <string>

#include "core/file_source.h"

namespace tarnwick::jobs {

/// Lays the model of that name, which is in an archive or a game, on the disk below `folder` for a program that knows
/// no archives: the model, the files that go with it and the models that it includes. The path of its .mdl file;
/// nothing, with `reason`, if it cannot be had or written. Companions that cannot be read are left out.
std::optional<std::string> UnpackModel(const std::string& name, const core::FileSource& files,
                                       const std::string& folder, std::string& reason);

}  // namespace tarnwick::jobs
