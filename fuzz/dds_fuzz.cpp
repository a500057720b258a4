// Reads any bytes as a DDS file; a picture that comes of them can be written and read again.

#include <cstdlib>
#include <span>
#include <string>

#include "core/image_view.h"
#include "textures/dds_format.h"
#include "textures/dds_reader.h"
#include "textures/dds_writer.h"

using namespace tarnwick;
using namespace tarnwick::textures;

namespace {

constexpr uint32_t LargestTried = 512;  // pixels of a side; more would only make the fuzzer slow

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto bytes = std::as_bytes(std::span(data, size));
  const core::ImageView file(bytes);
  if (file.Value<uint32_t>(12).value_or(0) > LargestTried || file.Value<uint32_t>(16).value_or(0) > LargestTried) {
    return 0;
  }
  std::string reason;
  const auto dds = ReadDds(file, reason);
  if (dds.has_value() == !reason.empty()) std::abort();
  if (!dds) return 0;
  if (dds->MissingBytes < 0 || dds->MissingBytes > dds->WantedBytes) std::abort();
  if (dds->Image.Width > 64 || dds->Image.Height > 64) return 0;
  std::string again;
  WriteDds(dds->Image, [&](std::string_view piece) {
    again += piece;
    return true;
  });
  const auto back = ReadDds(core::ImageView(std::as_bytes(std::span(again))), reason);
  if (!back || back->MissingBytes != 0 || back->Image.Width != dds->Image.Width) std::abort();
  return 0;
}
