#include "images/preview.h"

namespace tarnwick::images {

std::optional<PreviewImage> LoadPreview(const std::string& path, int side, const ImageWorker& worker,
                                        std::string* reason) {
  WorkerRequest request;
  request.Task = WorkerRequest::Job::Preview;
  request.Source = path;
  request.Side = side;
  WorkerAnswer answer = worker.Run(request);
  const size_t wanted = static_cast<size_t>(answer.Width) * static_cast<size_t>(answer.Height) * 4;
  if (answer.Done && answer.Width <= side && answer.Height <= side && answer.Payload.size() == wanted) {
    return PreviewImage{answer.Width, answer.Height, {answer.Payload.begin(), answer.Payload.end()}};
  }
  if (reason != nullptr) *reason = answer.Done ? "the image worker's answer is damaged" : answer.Reason;
  return std::nullopt;
}

}  // namespace tarnwick::images
