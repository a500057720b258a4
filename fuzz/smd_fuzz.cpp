// Scans any bytes as an SMD file, cut into pieces in two ways, and replaces a name in them, against a walk by
// character.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "smd/smd_scan.h"
#include "smd/text_replacer.h"

using namespace tarnwick;

namespace {

template <typename Take>
void InPieces(std::string_view text, size_t piece, Take take) {
  for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) take(text.substr(0, piece));
}

struct Scan {
  smd::SmdSummary Summary;
  bool Sound = false;
  int64_t Line = 0;

  bool operator==(const Scan&) const = default;
};

Scan ScanInPieces(std::string_view text, size_t piece) {
  Scan scan;
  smd::SmdScanner scanner(scan.Summary);
  InPieces(text, piece, [&](std::string_view bytes) { scanner.Feed(bytes); });
  scan.Sound = scanner.Finish();
  scan.Line = scanner.LineNumber();
  return scan;
}

std::string ReplaceInPieces(std::string_view text, const std::string& from, size_t piece) {
  std::string result;
  smd::TextReplacer replacer(from, "<" + from + ">", [&](std::string_view bytes) { result += bytes; });
  InPieces(text, piece, [&](std::string_view bytes) { replacer.Feed(bytes); });
  replacer.Finish();
  return result;
}

std::string ReplacePlainly(std::string_view text, const std::string& from) {
  std::string result;
  while (!text.empty()) {
    const bool here = text.starts_with(from);
    result += here ? "<" + from + ">" : std::string(text.substr(0, 1));
    text.remove_prefix(here ? from.size() : 1);
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (text.empty()) return 0;
  const size_t piece = 1 + data[0] % 16;
  const Scan whole = ScanInPieces(text, text.size());
  if (!(ScanInPieces(text, piece) == whole)) std::abort();
  int64_t faces = 0;
  for (const smd::SmdMaterialCount& material : whole.Summary.Materials) faces += material.FaceCount;
  if (faces != whole.Summary.TriangleCount) std::abort();

  const std::string from(text.substr(0, 1 + data[size - 1] % 8));
  if (ReplaceInPieces(text, from, piece) != ReplacePlainly(text, from)) std::abort();
  return 0;
}
