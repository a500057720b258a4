#include "tools/qc_model_name.h"

#include <set>
#include <string_view>
#include <vector>

#include "core/file_image.h"
#include "core/paths.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

/// No script includes more files than this.
constexpr size_t MostFiles = 256;

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

/// The words of a script: parted by blanks, in double quotes whole, comments (//, # and ; to the line's end, /* */)
/// left out.
std::vector<std::string_view> WordsOf(std::string_view script) {
  std::vector<std::string_view> words;
  size_t at = 0;
  const auto skipTo = [&](std::string_view end) {
    const size_t found = script.find(end, at);
    at = found == std::string_view::npos ? script.size() : found + end.size();
  };
  while (at < script.size()) {
    const std::string_view rest = script.substr(at);
    if (IsBlank(rest[0])) {
      ++at;
    } else if (rest.starts_with("//") || rest[0] == '#' || rest[0] == ';') {
      skipTo("\n");
    } else if (rest.starts_with("/*")) {
      skipTo("*/");
    } else if (rest[0] == '"') {
      const size_t start = ++at;
      skipTo("\"");
      const size_t end = at > start && script[at - 1] == '"' ? at - 1 : at;
      words.push_back(script.substr(start, end - start));
    } else {
      const size_t start = at;
      while (at < script.size() && !IsBlank(script[at]) && script[at] != '"') ++at;
      words.push_back(script.substr(start, at - start));
    }
  }
  return words;
}

/// Each file is read once: one that names no model, as one that is being read, gives nothing the next time either.
std::optional<std::string> FindModelNameIn(const std::string& qcPath, std::set<std::string>& seen) {
  if (seen.size() >= MostFiles || !seen.insert(qcPath).second) return std::nullopt;
  const auto file = core::FileImage::Read(qcPath);
  if (!file) return std::nullopt;
  const auto bytes = file->Bytes();
  const auto words = WordsOf({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  for (size_t i = 0; i + 1 < words.size(); ++i) {
    if (core::EqualIgnoringCase(words[i], "$modelname")) return std::string(words[i + 1]);
    if (!core::EqualIgnoringCase(words[i], "$include")) continue;
    const std::string included = std::string(core::DirectoryWithSeparator(qcPath)) + std::string(words[i + 1]);
    if (auto found = FindModelNameIn(included, seen)) return found;
  }
  return std::nullopt;
}

std::optional<fs::file_time_type> TimeOf(const std::string& path) {
  const auto found = core::FindIgnoringCase(path);
  std::error_code error;
  const auto time = found ? fs::last_write_time(core::NativePath(*found), error) : fs::file_time_type();
  if (!found || error) return std::nullopt;
  return time;
}

}  // namespace

std::optional<std::string> FindModelName(const std::string& qcPath) {
  std::set<std::string> seen;
  return FindModelNameIn(qcPath, seen);
}

ModelFileWatch::ModelFileWatch(const std::string& gameDirectory, const std::string& qcPath) {
  const auto model = FindModelName(qcPath);
  if (!model || model->empty()) return;
  std::string_view game = gameDirectory;
  while (game.ends_with('/') || game.ends_with('\\')) game.remove_suffix(1);
  m_path = std::string(game) + "/models/" + *model;
  if (!core::EqualIgnoringCase(fs::path(*model).extension().string(), ".mdl")) m_path += ".mdl";
  m_before = TimeOf(m_path);
}

std::optional<bool> ModelFileWatch::WasWritten() const {
  if (m_path.empty()) return std::nullopt;
  const auto now = TimeOf(m_path);
  return now && now != m_before;
}

}  // namespace tarnwick::tools
