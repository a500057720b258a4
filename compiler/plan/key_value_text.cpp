#include "compiler/plan/key_value_text.h"

namespace tarnwick::compiler {

namespace {

void Write(std::string& text, const std::vector<qc::KeyValue>& keys) {
  for (const qc::KeyValue& key : keys) {
    if (!key.IsBlock) {
      text += "\"" + std::string(key.Key) + "\" \"" + std::string(key.Value) + "\" ";
      continue;
    }
    const bool bare = !key.Key.empty() && key.Key.find_first_of(" \t{}\"/;#") == std::string_view::npos;
    text += bare ? std::string(key.Key) : "\"" + std::string(key.Key) + "\"";
    text += " {\n";
    Write(text, key.Children);
    text += " }\n";
  }
}

}  // namespace

std::string KeyValueBody(const std::vector<qc::KeyValue>& keys) {
  std::string text;
  Write(text, keys);
  return text;
}

std::string KeyValueText(const std::vector<qc::KeyValue>& keys) {
  return "mdlkeyvalue\n{\n" + KeyValueBody(keys) + "}\n";
}

}  // namespace tarnwick::compiler
