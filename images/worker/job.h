#pragma once

#include "images/worker/image_file.h"
#include "images/worker_protocol.h"

namespace tarnwick::images {

/// The files of a request, opened before the jail is entered.
struct JobFiles {
  ImageFile Source;
  ImageFile Alpha;   // closed if there is none, or if it cannot be opened
  ImageFile Output;  // closed for a preview
};

/// Does what `request` says with files that are already open. Opens nothing.
WorkerAnswer RunJob(const WorkerRequest& request, const JobFiles& files);

/// The answer to WorkerRequest::Job::Formats: for each format its name, its endings separated by commas, and "r", "w"
/// or "rw", separated by tabs.
WorkerAnswer ListFormats();

}  // namespace tarnwick::images
