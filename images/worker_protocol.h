#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "images/limits.h"

namespace tarnwick::images {

/// What the worker is to do with one image. It travels as the worker's arguments.
struct WorkerRequest {
  enum class Job {
    ToTga,    // Source, with Alpha in its alpha channel if given, to a TGA file of power-of-two sizes
    FromTga,  // the TGA file Source to the format that Name asks for
    Preview,  // Source, at most Side pixels wide and high, as bytes behind the answer
    Formats,  // the formats that can be read and written, a line each behind the answer
  };
  Job Task = Job::ToTga;
  std::string Source;         // read; its name tells its format, but for FromTga
  std::string Alpha;          // read, may be empty; it is taken to have Source's format
  std::string Output;         // an existing file whose contents are replaced
  std::string Name;           // the name that Output will get, for its format
  int Side = 0;               // pixels
  bool UseDamaged = false;    // make do with what can be read of a damaged image
  bool FamiliarOnly = false;  // read no format but those that textures are commonly made from
};

/// Whether the request is for a small picture of many, which may cost little.
inline bool IsThumbnail(const WorkerRequest& request) {
  return request.Task == WorkerRequest::Job::Preview && request.Side <= LargestThumbnailSide;
}

/// What the worker says: one line, then bytes that depend on the task.
struct WorkerAnswer {
  bool Done = false;
  bool Stopped = false;  // ended by the stop that the worker heeds; never said by the worker itself
  bool Damaged = false;  // not done since an image is damaged; with UseDamaged it might be
  std::string Reason;    // why not: words without the file's name
  int Width = 0;         // pixels of the result
  int Height = 0;
  bool AlphaReplaced = false;  // ToTga: whether the alpha image could be used
  std::string AlphaReason;     // why not
  std::string Doubt;           // what is wrong with the image that was used all the same
  std::string Payload;  // Preview: Width * Height * 4 bytes red, green, blue, alpha, top row first; Formats: lines
};

/// The arguments behind the program's name.
std::vector<std::string> ToArguments(const WorkerRequest& request);
/// Nothing if the arguments are no request.
std::optional<WorkerRequest> FromArguments(std::span<const std::string> arguments);

/// The answer's first line, without its payload.
std::string AnswerLine(const WorkerAnswer& answer);
/// Nothing if `text` is no answer. The text is not trusted: it may come from a worker that a hostile file has taken
/// over. Numbers are checked against the limits, and of a reason only printable characters are kept.
std::optional<WorkerAnswer> ParseAnswer(std::string_view text);

}  // namespace tarnwick::images
