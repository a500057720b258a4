#pragma once

#include <stop_token>
#include <string>
#include <utility>

#include "images/worker_protocol.h"

namespace tarnwick::images {

/// Starts the program that works on images, one process for each request, so that a file which kills or captures its
/// decoder harms nothing else. Requests may run side by side in several threads.
class ImageWorker {
 public:
  /// Uses `tarnwick-imageworker` in the directory of the running program.
  ImageWorker();
  /// Uses the program at `path`.
  explicit ImageWorker(std::string path) : m_path(std::move(path)) {}

  const std::string& Path() const { return m_path; }

  /// Lets the worker read no format but those that textures are commonly made from, for users who want less to trust.
  void ReadFamiliarOnly(bool only) { m_familiarOnly = only; }

  /// Ends a request that is at work, and begins no further one, when a stop is asked for.
  void StopWith(std::stop_token stop) { m_stop = std::move(stop); }

  /// Does what `request` says. Paths may hold either slash. When it fails, `Reason` of the answer says why, whatever
  /// happened: the file is no image, the limits were passed, the worker crashed or could not be started.
  WorkerAnswer Run(const WorkerRequest& request) const;

 private:
  std::string m_path;
  bool m_familiarOnly = false;
  std::stop_token m_stop;
};

}  // namespace tarnwick::images
