#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "jobs/host.h"
#include "jobs/input_content.h"
#include "jobs/item_run.h"
#include "tools/program_start.h"

namespace tarnwick::jobs {

/// Where the images of textures go.
enum class ImagePlace {
  Output,         // one named texture to `Output` itself if that has an ending; else into `Output`, a folder
  ExactlyOutput,  // the one texture to the file `Output`, whatever it is called
  BesideInput,    // each texture beside itself, in the format of the ending of `Output`
};

/// Textures to images by vtf2tga, every frame, face and slice of each.
struct ExportTextures {
  std::vector<std::string> Inputs = {};        // textures, and folders that are searched for them
  std::shared_ptr<InputContent> Content = {};  // by which inputs are had; null: no game is known
  ImagePlace Place = ImagePlace::Output;
  std::string Output = ".";       // missing folders are made
  std::string Format = {};        // an ending without its dot, for images in a folder; "" for tga
  bool Recursive = false;         // also the folders below a folder
  bool KeepTga = false;           // leave the TGA files beside images of other formats
  std::string SdkDirectory = {};  // whose vtf2tga runs; the program's own where it is empty
  tools::StartSettings Start = {};
  int Threads = 1;  // textures at a time; one where the TGA files are kept
};

/// The textures that the job finds; the target of each is the image of its first frame.
[[nodiscard]] JobPlan Plan(const ExportTextures& job);

/// Exports every texture. Asks before files that stand where its files go are replaced, but those that were named
/// themselves. Without KeepTga nothing but the images is left behind, and an older image gives way to a whole new one
/// only. A texture has succeeded when vtf2tga ended well and an image of each of its TGA files was written.
JobResult Run(const ExportTextures& job, Host& host, const std::stop_token& stop);

}  // namespace tarnwick::jobs
