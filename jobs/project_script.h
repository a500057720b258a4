#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/report.h"

namespace tarnwick::jobs {

/// The script that was made of a model project's file.
struct ProjectScript {
  std::string Path;
  uint32_t Switches = 0;              // of studiomdl, that the project asks for
  std::vector<std::string> Warnings;  // of files that the project needs and that are not there
};

/// Whether the file at `path` is a model project by its name.
[[nodiscard]] bool IsProjectFile(const std::string& path);

/// Writes the script of the project file at `path` beside its reference SMD. `materials` is the directory below the
/// game's materials/models, which no project file holds. Nothing if that failed, which is told.
[[nodiscard]] std::optional<ProjectScript> WriteProjectScript(const std::string& path, const std::string& materials,
                                                              core::Report& report);

}  // namespace tarnwick::jobs
