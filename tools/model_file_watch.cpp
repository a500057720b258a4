#include "tools/model_file_watch.h"

#include <string_view>

#include "core/paths.h"
#include "qc/script.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

std::optional<fs::file_time_type> TimeOf(const std::string& path) {
  const auto found = core::FindIgnoringCase(path);
  std::error_code error;
  const auto time = found ? fs::last_write_time(core::NativePath(*found), error) : fs::file_time_type();
  if (!found || error) return std::nullopt;
  return time;
}

}  // namespace

ModelFileWatch::ModelFileWatch(const std::string& gameDirectory, const std::string& qcPath) {
  const auto model = qc::FindModelName(qcPath);
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
