#pragma once

#include <string>
#include <vector>

#include "cli/tool_directories.h"
#include "core/report.h"
#include "images/image_worker.h"
#include "tools/material_compile.h"

namespace tarnwick::cli {

/// What came of one image.
struct MaterialOutcome {
  std::string Image;
  std::string CommandLine;          // of vtex
  std::vector<std::string> Files;   // the texture and the material, where they were written
  std::vector<std::string> Errors;  // one line each
  bool Stopped = false;

  bool Succeeded() const { return Errors.empty() && !Stopped; }
};

/// Compiles the images of `job` one after the other, making the directories below the game directory that are missing.
/// `report` gets the log as it grows, and the boxes. Called with each outcome as it is there: `done`.
void RunMaterials(const tools::MaterialCompile& job, const ToolDirectories& directories,
                  const images::ImageWorker& worker, const tools::ToolRunOptions& run, core::Report& report,
                  const std::function<void(const MaterialOutcome&)>& done);

}  // namespace tarnwick::cli
