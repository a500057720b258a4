// Reads any bytes as an SMD or VTA file, with vectors and without, and every number in them against strtof.

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "smd/smd_reader.h"
#include "smd/source_number.h"
#include "support/source_bytes.h"

using namespace tarnwick;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckSource(const smd::SmdSource& source) {
  const size_t nodes = source.Nodes.size();
  Require(source.Poses.size() == nodes * static_cast<size_t>(source.FrameCount));
  Require(source.Corners.size() == 3 * source.TriangleMaterials.size());
  for (const smd::SourceNode& node : source.Nodes) Require(node.Parent < static_cast<int32_t>(nodes));
  for (const int32_t material : source.TriangleMaterials) {
    Require(static_cast<size_t>(material) < source.Materials.size());
  }
  for (const smd::SourceCorner& corner : source.Corners) {
    Require(size_t{corner.FirstLink} + corner.LinkCount <= source.Links.size());
    Require(std::isfinite(corner.Position.X) && std::isfinite(corner.U));
  }
}

void CheckNumbers(const std::string& text) {
  for (size_t at = 0; at < text.size(); ++at) {
    const char first = text[at];
    if (first != '.' && first != '-' && (first < '0' || first > '9')) continue;
    float value = 0;
    const char* begin = text.c_str() + at;
    const char* end = smd::ParseFloat(begin, text.c_str() + text.size(), value);
    if (end == begin) continue;
    const std::string number(begin, end);
    Require(std::bit_cast<uint32_t>(value) == std::bit_cast<uint32_t>(std::strtof(number.c_str(), nullptr)) ||
            (value == 0 && std::abs(std::strtof(number.c_str(), nullptr)) < 1e-30f));
    at += number.size() - 1;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  smd::SmdSource source;
  bool error = false;
  for (const smd::SourceMessage& message : smd::ReadSource(text, "a.smd", source)) error = error || message.IsError;
  if (!error) CheckSource(source);
  CheckNumbers(text);
  Require(tests::SourceBytes(text, core::HighestVectorLevel()) == tests::SourceBytes(text, core::VectorLevel::Plain));
  return 0;
}
