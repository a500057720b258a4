// Compiles any bytes: a script, behind a byte 1 the text that every mesh and animation of it is, behind another that of
// every shape file.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "compiler/compile_model.h"

using namespace tarnwick;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

std::string_view CutAt(std::string_view& text) {
  const std::string_view head = text.substr(0, text.find('\1'));
  text.remove_prefix(std::min(head.size() + 1, text.size()));
  return head;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t MostFiles = 64;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string_view script = CutAt(text);
  const std::string_view mesh = CutAt(text);
  size_t files = 0;
  compiler::CompileOptions options;
  options.KeepValues = size % 2 == 1;
  options.MemoryLimit = 64 << 20;
  options.Read = [&](const std::string& path, std::string& reason) -> std::optional<core::FileImage> {
    reason = "not here";
    if (path.size() > 64 || ++files > MostFiles) return std::nullopt;
    const std::string_view bytes = path.ends_with(".vta") ? text : mesh;
    return core::FileImage::FromBytes(path, std::as_bytes(std::span(bytes)));
  };
  compiler::CompileReport report;
  const auto made = compiler::CompileTextToMemory(script, "a.qc", options, report);
  Require(made.has_value() == (report.Errors == 0));
  if (!made) return 0;
  int32_t length = 0, checksum = 0, other = 0;
  std::memcpy(&length, made->Mdl.data() + 0x4C, sizeof length);
  std::memcpy(&checksum, made->Mdl.data() + 8, sizeof checksum);
  Require(length == static_cast<int32_t>(made->Mdl.size()));
  if (!made->Vvd.empty()) {
    std::memcpy(&other, made->Vvd.data() + 8, sizeof other);
    Require(other == checksum);
  }
  return 0;
}
