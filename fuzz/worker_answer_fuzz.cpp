// Takes any bytes for what an image worker says: an answer that is accepted keeps to its limits, can be shown, and says
// the same when it is told again.

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "images/limits.h"
#include "images/worker_protocol.h"

using namespace tarnwick::images;

namespace {

bool CanBeShown(const std::string& text) {
  return text.size() < 400 &&
         std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto answer = ParseAnswer(text);
  if (!answer) return 0;
  if (answer->Width < 0 || answer->Width > LargestSide || answer->Height < 0 || answer->Height > LargestSide) {
    std::abort();
  }
  if (answer->Done && answer->Damaged) std::abort();
  for (const std::string* each : {&answer->Reason, &answer->AlphaReason, &answer->Doubt}) {
    if (!CanBeShown(*each)) std::abort();
  }
  const auto again = ParseAnswer(AnswerLine(*answer) + answer->Payload);
  if (!again || again->Done != answer->Done || again->Damaged != answer->Damaged || again->Reason != answer->Reason ||
      again->Width != answer->Width || again->Height != answer->Height ||
      again->AlphaReplaced != answer->AlphaReplaced || again->AlphaReason != answer->AlphaReason ||
      again->Doubt != answer->Doubt || again->Payload != answer->Payload) {
    std::abort();
  }
  return 0;
}
