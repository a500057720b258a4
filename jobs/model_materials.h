#pragma once

#include <string>

#include "archives/content_files.h"
#include "images/image_worker.h"
#include "jobs/item_run.h"

namespace tarnwick::jobs {

/// Where the materials of a model go.
struct MaterialCopies {
  std::string Model;      // the name of the .mdl file
  std::string Directory;  // of the sources: the files go below its folder "materials", which is made
  std::string Format;     // of the textures, an ending: "tga", "png"
};

/// Writes the materials that the model names, with those that they include, as they are, and the textures that these
/// name as images, each under its own path in small letters. They are looked for as `ContentFiles::FindGameFile` does;
/// what is missing or cannot be read is a warning that tells the places. Files that were written go into the run's
/// result.
void CopyModelMaterials(const MaterialCopies& copies, const archives::ContentFiles& content,
                        const images::ImageWorker& worker, ItemRun& run);

}  // namespace tarnwick::jobs
