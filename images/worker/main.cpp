// tarnwick-imageworker: does one request on one image and says how it went on its standard output. It looks at no byte
// of a file before it has given up everything but the files it has opened.

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "core/command_line.h"
#include "core/sanitized.h"
#include "images/limits.h"
#include "images/worker/jail.h"
#include "images/worker/job.h"

#if TARNWICK_SANITIZED
// What needs calls that the jail forbids, or more memory than an allocation can get, must not end the process.
extern "C" const char* __asan_default_options() {
  return "detect_leaks=0:allocator_may_return_null=1:max_allocation_size_mb=1100";
}
extern "C" const char* __tsan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=1100";
}
#endif

namespace {

using namespace tarnwick::images;

/// Ends the process at once: whatever a damaged file has left behind in memory is not walked again.
[[noreturn]] void Answer(const WorkerAnswer& answer) {
  const std::string line = AnswerLine(answer);
  std::fwrite(line.data(), 1, line.size(), stdout);
  if (answer.Done) std::fwrite(answer.Payload.data(), 1, answer.Payload.size(), stdout);
  std::fflush(stdout);
  std::_Exit(answer.Done ? EXIT_SUCCESS : EXIT_FAILURE);
}

[[noreturn]] void Fail(std::string reason) {
  WorkerAnswer answer;
  answer.Reason = std::move(reason);
  Answer(answer);
}

/// Opens what the request names. An alpha image that cannot be opened counts as none.
JobFiles OpenFiles(const WorkerRequest& request) {
  JobFiles files;
  std::string reason;
  std::string ignored;
  files.Source = ImageFile::OpenForReading(request.Source, reason);
  if (!files.Source) Fail(reason);
  if (!request.Alpha.empty()) files.Alpha = ImageFile::OpenForReading(request.Alpha, ignored);
  if (!request.Output.empty()) files.Output = ImageFile::OpenForWriting(request.Output, reason);
  if (request.Task != WorkerRequest::Job::Preview && !files.Output) Fail(reason);
  return files;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const tarnwick::core::CommandLine line(argumentCount, arguments);
  const std::vector<std::string> words = line.Arguments();
  const auto request = FromArguments(words);
  if (!request) {
    std::fputs("tarnwick-imageworker is started by Tarnwick and does nothing by itself.\n", stderr);
    return 2;
  }
  std::string reason;
  static char outputBuffer[65536];  // chosen by hand: the default choice asks the system about the file
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  std::setvbuf(stdout, outputBuffer, _IOFBF, sizeof outputBuffer);
  if (!LimitResources(reason)) Fail(reason);
  FreeImage_Initialise(TRUE);
  if (request->Task == WorkerRequest::Job::Formats) Answer(ListFormats());
  const JobFiles files = OpenFiles(*request);
  if (IsThumbnail(*request) && !LimitFurtherMemory(ThumbnailMemory, reason)) Fail(reason);
  if (!EnterJail(reason)) Fail(reason);
  try {
    Answer(RunJob(*request, files));
  } catch (const std::exception& error) {  // of a decoder: memory ran out, or what it says
    Fail(std::string("the image could not be worked on: ") + error.what());
  }
}
