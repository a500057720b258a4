#include "view/widget/shown_model.h"

#include <algorithm>

#include "core/paths.h"
#include "view/materials/material_loader.h"
#include "view/scene/make_scene.h"

namespace tarnwick::view {

namespace {

class Kept : public core::TroubleSink {
 public:
  explicit Kept(std::vector<core::Trouble>& troubles) : m_troubles(troubles) {}
  void Tell(const core::Trouble& trouble) override { m_troubles.push_back(trouble); }

 private:
  std::vector<core::Trouble>& m_troubles;
};

bool IsSmd(const std::string& path) {
  return core::LowerAscii(path).ends_with(".smd");
}

/// Why nothing came of loading, from what was told meanwhile.
std::string ErrorOf(const std::vector<core::Trouble>& troubles, const std::string& path) {
  for (const core::Trouble& trouble : troubles) {
    if (trouble.Level != core::Severity::Error) continue;
    return trouble.Details.empty() ? trouble.Text : trouble.Text + " (" + trouble.Details + ")";
  }
  return path + " cannot be shown";
}

}  // namespace

std::string NoticeOf(const ShownModel& model) {
  if (model.Model == nullptr) return {};
  const auto first = [&](core::Severity level) -> const core::Trouble* {
    const auto found = std::find_if(model.Troubles.begin(), model.Troubles.end(),
                                    [level](const core::Trouble& trouble) { return trouble.Level == level; });
    return found == model.Troubles.end() ? nullptr : &*found;
  };
  const core::Trouble* error = first(core::Severity::Error);
  if (model.Model->Draws.empty()) {
    const core::Trouble* why = error != nullptr ? error : first(core::Severity::Warning);
    const std::string bones = model.Model->Bones.empty() ? "" : " Its bones are shown.";
    return why == nullptr ? "There is no mesh." + bones : "There is no mesh: " + why->Text + "." + bones;
  }
  if (error != nullptr) return "Not all of it is shown: " + error->Text;
  const size_t missing = model.Materials->Missing.size();
  if (missing == 0 || IsSmd(model.Model->Path)) return {};
  return std::to_string(missing) + (missing == 1 ? " material or texture is" : " materials or textures are") +
         R"( missing and shown as a pattern; "Facts" has the paths that were tried.)";
}

std::vector<std::string> ModelSource::FilesOf(const std::string& path) {
  std::vector<std::string> files = {path};
  if (IsSmd(path) || path.size() < 4) return files;
  const std::string stem = path.substr(0, path.size() - 4);
  for (const char* ending : {".vvd", ".dx90.vtx", ".dx80.vtx", ".vtx", ".phy", ".ani"}) files.push_back(stem + ending);
  return files;
}

ShownModel ModelSource::Load(const std::string& path, const std::string& gameDirectory) {
  const std::lock_guard lock(m_lock);
  ShownModel shown;
  Kept sink(shown.Troubles);
  if (!m_content || m_content->GameDirectory() != gameDirectory) {
    m_content = std::make_unique<archives::ContentFiles>(gameDirectory, m_unheard);
    TellGameProblem(*m_content, sink);
  } else {
    m_content->Refresh();  // a material may have been compiled since
  }
  auto scene = IsSmd(path) ? MakeSmdScene(path, sink, *m_content) : MakeScene(path, sink, *m_content);
  if (!scene) {
    shown.Error = ErrorOf(shown.Troubles, path);
    return shown;
  }
  const MaterialFiles files(*m_content, path);
  shown.Materials =
      std::make_shared<MaterialSet>(LoadMaterials(scene->Materials, scene->MaterialDirectories, files, m_textures));
  shown.TextureBytes = shown.Materials->TextureBytes();
  shown.Model = std::make_shared<Scene>(std::move(*scene));
  return shown;
}

}  // namespace tarnwick::view
