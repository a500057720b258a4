// Reads any bytes as keys and values, as a gameinfo.txt, and as a material that includes itself under other names. What
// was read is written out, quoted, and read again, which must change nothing.

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "archives/game_info.h"
#include "core/key_values.h"
#include "view/materials/material_text.h"

using namespace tarnwick;

namespace {

void Write(const std::vector<core::KeyValue>& keys, std::string& text) {
  for (const core::KeyValue& key : keys) {
    text += '"' + key.Key + '"';
    if (key.IsBlock) {
      text += key.Condition + "{";
      Write(key.Children, text);
      text += '}';
    } else {
      text += '"' + key.Value + '"' + key.Condition + '\n';
    }
  }
}

bool Same(const std::vector<core::KeyValue>& a, const std::vector<core::KeyValue>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i].Key != b[i].Key || a[i].Value != b[i].Value || a[i].Condition != b[i].Condition) return false;
    if (a[i].IsBlock != b[i].IsBlock || !Same(a[i].Children, b[i].Children)) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const core::KeyValues keys = core::ReadKeyValues(text);
  if (keys.Error.empty()) {
    std::string again;
    Write(keys.Roots, again);
    // A value in brackets may hold quotes, which cannot be written.
    if (text.find('[') == std::string_view::npos) {
      const core::KeyValues second = core::ReadKeyValues(again);
      if (!second.Error.empty() || !Same(keys.Roots, second.Roots)) std::abort();
    }
  }
  std::string reason;
  const auto paths = archives::ReadSearchPaths(text, "/games/mod", reason);
  if (!paths && reason.empty()) std::abort();
  const view::MaterialText material = view::ReadMaterialText(text, "a.vmt", [&](const std::string& name) {
    return view::MaterialFile{.Image = core::FileImage::FromBytes(name, std::as_bytes(std::span(text)))};
  });
  for (const auto& [key, value] : material.Values) {
    for (const float part : material.Colour(key)) {
      if (!(part >= 0 && part <= 16)) std::abort();
    }
  }
  if (material.Shader.empty() && material.Problem.empty()) std::abort();
  for (const core::KeyValue& key : keys.Roots) core::ConditionHolds(key.Condition);
  return 0;
}
