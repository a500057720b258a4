#include "images/known_formats.h"

#include <sstream>

#include "images/image_format.h"

namespace tarnwick::images {

std::vector<KnownFormat> KnownFormats(const ImageWorker& worker, std::string* reason) {
  WorkerRequest request;
  request.Task = WorkerRequest::Job::Formats;
  const WorkerAnswer answer = worker.Run(request);
  if (!answer.Done && reason != nullptr) *reason = answer.Reason;

  std::vector<KnownFormat> formats;
  std::istringstream lines(answer.Payload);
  for (std::string name, endings, uses;
       std::getline(lines, name, '\t') && std::getline(lines, endings, '\t') && std::getline(lines, uses);) {
    KnownFormat format{name, {}, uses.find('r') != std::string::npos, uses.find('w') != std::string::npos};
    std::istringstream list(endings);
    for (std::string ending; std::getline(list, ending, ',');) format.Endings.push_back(ending);
    // The library cannot write these; the program does it itself.
    if (formats.size() == FormatDds) format.Writes = true;
    formats.push_back(std::move(format));
  }
  return formats;
}

}  // namespace tarnwick::images
