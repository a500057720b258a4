#include "view/materials/material_text.h"

#include <algorithm>
#include <cmath>

#include "archives/folded_text.h"
#include "core/key_values.h"
#include "core/number_parse.h"
#include "core/paths.h"

namespace tarnwick::view {

namespace {

using core::EqualIgnoringCase;

std::string_view TextOf(const core::FileImage& file) {
  return {reinterpret_cast<const char*>(file.Bytes().data()), file.Bytes().size()};
}

/// The name below `materials` of a file that another one includes.
std::string IncludedName(std::string_view value) {
  std::string name = archives::PlainName(value);
  constexpr std::string_view Folder = "materials/";
  if (archives::FoldedText(name).starts_with(Folder)) name.erase(0, Folder.size());
  if (!core::LowerAscii(name).ends_with(".vmt")) name += ".vmt";
  return name;
}

/// Whether a block inside a shader's holds for a graphics card of today: ">=DX90", "GPU>=1", "VertexLitGeneric_DX9".
bool IsBlockInUse(std::string_view key, std::string_view shader) {
  if (key.starts_with(">=") || core::LowerAscii(key).starts_with("gpu>=")) return true;
  if (key.size() <= shader.size() || !EqualIgnoringCase(key.substr(0, shader.size()), shader)) return false;
  const std::string behind = core::LowerAscii(key.substr(shader.size()));
  return behind == "_dx9" || behind == "_dx90" || behind == "_hdr_dx9" || behind == "_hdr";
}

class Reader {
 public:
  Reader(const ReadMaterialFile& read, MaterialText& result) : m_read(read), m_result(result) {}

  void Read(std::string_view text, const std::string& name) {
    m_open.push_back(archives::FoldedText(name));
    const core::KeyValues keys = core::ReadKeyValues(text);
    // Many files lack the last brace, which takes nothing from what they say.
    const core::KeyValue* shader = nullptr;
    for (const core::KeyValue& root : keys.Roots) {
      if (root.IsBlock && shader == nullptr && !root.Key.empty()) shader = &root;
      if (!root.IsBlock && (EqualIgnoringCase(root.Key, "#include") || EqualIgnoringCase(root.Key, "#base"))) {
        Include(root.Value);
      }
    }
    if (shader == nullptr) {
      Problem(name + (keys.Error.empty() ? " names no shader" : ": " + keys.Error));
    } else if (EqualIgnoringCase(shader->Key, "patch")) {
      Patch(*shader, name);
    } else {
      m_result.Shader = shader->Key;
      Take(*shader, true);
      for (const core::KeyValue& block : shader->Children) {
        if (block.IsBlock && IsBlockInUse(block.Key, shader->Key)) Take(block, true);
      }
    }
    m_open.pop_back();
  }

 private:
  /// Takes the values of a block; the first of each key counts. Without `add` only of keys that have a value already.
  void Take(const core::KeyValue& block, bool add) {
    std::map<std::string, std::string> values;
    for (const core::KeyValue& key : block.Children) {
      if (!key.IsBlock && core::ConditionHolds(key.Condition)) values.emplace(core::LowerAscii(key.Key), key.Value);
    }
    for (auto& [key, value] : values) {
      if (add || m_result.Values.contains(key)) m_result.Values[key] = std::move(value);
    }
  }

  void Patch(const core::KeyValue& patch, const std::string& name) {
    const core::KeyValue* include = patch.Find("include");
    if (include == nullptr || include->IsBlock) return Problem(name + " is a patch that includes nothing");
    Include(include->Value);
    if (const core::KeyValue* replace = patch.Find("replace")) Take(*replace, false);
    if (const core::KeyValue* insert = patch.Find("insert")) Take(*insert, true);
  }

  void Include(std::string_view value) {
    const std::string name = IncludedName(value);
    if (std::find(m_open.begin(), m_open.end(), archives::FoldedText(name)) != m_open.end()) {
      return Problem(name + " includes itself, by way of " + std::to_string(m_open.size()) + " files");
    }
    if (++m_included > MostIncludes)
      return Problem("more than " + std::to_string(MostIncludes) + " files are included");
    MaterialFile file = m_read(name);
    if (!file.Image) {
      m_result.Tried.insert(m_result.Tried.end(), file.Tried.begin(), file.Tried.end());
      return Problem("the included file " + name + ": " + file.Reason);
    }
    if (file.Image->Bytes().size() > LargestMaterialText) return Problem(name + " is too large for a material");
    Read(TextOf(*file.Image), name);
  }

  void Problem(std::string text) {
    if (m_result.Problem.empty()) m_result.Problem = std::move(text);
  }

  const ReadMaterialFile& m_read;
  MaterialText& m_result;
  std::vector<std::string> m_open;  // folded names of the files that are being read
  int m_included = 0;
};

std::optional<float> FiniteNumber(std::string_view text, size_t& length) {
  const double value = core::ParseReal(text, &length);
  if (length == 0 || !std::isfinite(value) || std::abs(value) > 1e9) return std::nullopt;
  return static_cast<float>(value);
}

}  // namespace

std::string_view MaterialText::Value(std::string_view key) const {
  const auto found = Values.find(std::string(key));
  return found == Values.end() ? std::string_view() : found->second;
}

bool MaterialText::IsSet(std::string_view key) const {
  return Number(key, 0) != 0;
}

float MaterialText::Number(std::string_view key, float otherwise) const {
  size_t length = 0;
  return FiniteNumber(Value(key), length).value_or(otherwise);
}

std::array<float, 3> MaterialText::Colour(std::string_view key) const {
  constexpr float Brightest = 16;
  std::string_view text = Value(key);
  const size_t bracket = text.find_first_of("[{");
  const bool bytes = bracket != std::string_view::npos && text[bracket] == '{';
  if (bracket != std::string_view::npos) text.remove_prefix(bracket + 1);
  std::array<float, 3> colour{1, 1, 1};
  size_t count = 0;
  for (; count < 3; ++count) {
    size_t length = 0;
    const auto number = FiniteNumber(text, length);
    if (!number) break;
    colour[count] = std::clamp(bytes ? *number / 255 : *number, 0.0f, Brightest);
    text.remove_prefix(length);
  }
  if (count == 1) return {colour[0], colour[0], colour[0]};
  return count == 3 ? colour : std::array<float, 3>{1, 1, 1};
}

MaterialText ReadMaterialText(std::string_view text, const std::string& name, const ReadMaterialFile& read) {
  MaterialText result;
  Reader(read, result).Read(text, name);
  return result;
}

}  // namespace tarnwick::view
