#pragma once

#include <string>
#include <vector>

#include "cli/vtf_plan.h"
#include "images/image_worker.h"
#include "tools/console_capture.h"

namespace tarnwick::cli {

/// What came of one texture.
struct VtfOutcome {
  PlannedTexture Texture;
  std::vector<std::string> Files;   // written, the first frame first
  std::vector<std::string> Errors;  // one line each
  std::string LogText;              // the command line and what the tool and the conversions said
  bool Stopped = false;
  double Seconds = 0;

  bool Succeeded() const { return Errors.empty() && !Stopped; }
};

/// Writes every frame and face of one texture: vtf2tga makes TGA files in a folder of its own beside the images, which
/// goes away again, and each of them becomes one image. An image that stood there is replaced only by a whole new one.
/// Missing folders are made. Several may run side by side.
VtfOutcome ExportVtf(const PlannedTexture& texture, const std::string& sdkDirectory, const images::ImageWorker& worker,
                     const tools::ToolRunOptions& run);

}  // namespace tarnwick::cli
