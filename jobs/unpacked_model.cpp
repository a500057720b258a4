#include "jobs/unpacked_model.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "archives/archive_name.h"
#include "archives/folded_text.h"
#include "archives/safe_name.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "core/whole_path.h"
#include "model/loaded_model.h"
#include "model/script_records.h"

namespace tarnwick::jobs {

namespace {

constexpr size_t MostModels = 64;  // that include one another

constexpr std::string_view CompanionEndings[] = {".vvd", ".vtx", ".dx80.vtx", ".dx90.vtx", ".sw.vtx", ".phy", ".ani"};

/// Where a name lies in its game: "models/props/crate.mdl".
std::string NameInGame(const std::string& name) {
  const archives::ContentName content = archives::ReadContentName(name);
  const std::string plain =
      archives::PlainName(content.Where == archives::ContentName::Place::Disk ? content.Path : content.Inside);
  const size_t at = ('/' + archives::FoldedText(plain)).rfind("/models/");
  return at == std::string::npos ? "models/" + std::string(core::LastComponent(plain)) : plain.substr(at);
}

class Unpacking {
 public:
  Unpacking(const core::FileSource& files, const std::string& folder) : m_files(files), m_folder(folder) {}

  /// The path of the model below the folder.
  std::optional<std::string> Take(const std::string& name, std::string& reason) {
    auto image = m_files.Read(name, &reason);
    if (!image) {
      reason = name + ": " + reason;
      return std::nullopt;
    }
    model::LoadedModel model;
    model.Mdl = std::move(*image);
    const std::string inside = NameInGame(model.Mdl.Path());
    if (reason = archives::UnsafeReason(inside); !reason.empty()) {
      reason = archives::PrintableName(name) + ": " + reason;
      return std::nullopt;
    }
    if (!m_taken.insert(archives::FoldedText(inside)).second) return std::string();
    auto path = Write(inside, model.Mdl, reason);
    if (!path) return std::nullopt;
    const std::string source = WithoutEnding(model.Mdl.Path());
    for (const std::string_view ending : CompanionEndings) {
      std::string ignored;
      const auto found = m_files.FindCompanion(source + std::string(ending));
      const auto companion = found ? m_files.Read(*found, &ignored) : std::nullopt;
      if (companion && !Write(WithoutEnding(inside) + std::string(ending), *companion, reason)) return std::nullopt;
    }
    if (model.View().At<model::StudioHeader>(0)) TakeIncluded(model, inside);
    return path;
  }

 private:
  static std::string WithoutEnding(const std::string& name) {
    return name.substr(0, name.size() - std::min<size_t>(4, name.size()));
  }

  void TakeIncluded(const model::LoadedModel& model, const std::string& inside) {
    const auto header = model.Header();
    const auto included =
        model.View().Array<model::StudioIncludeModel>(header->IncludeModelOffset, header->IncludeModelCount);
    // What stands before the model's name in the game: "pak01_dir.vpk:", a folder.
    const std::string start = model.Mdl.Path().substr(0, model.Mdl.Path().size() - inside.size());
    for (int64_t i = 0; included && i < included->Count() && m_taken.size() < MostModels; ++i) {
      const auto name = model.NameOf((*included)[i], (*included)[i]->NameOffset);
      if (!name) continue;
      const auto found = m_files.FindCompanion(start + archives::PlainName(*name));
      std::string ignored;
      if (found) Take(*found, ignored);
    }
  }

  std::optional<std::string> Write(const std::string& inside, const core::FileImage& image, std::string& reason) {
    const std::filesystem::path path = core::NativePath(core::PathBelow(m_folder, inside));
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    auto file = core::OutputFile::Create(core::PathText(path), &reason);
    if (file) {
      file->Write({reinterpret_cast<const char*>(image.Bytes().data()), image.Bytes().size()});
      if (file->Commit()) return core::PathText(path);
      reason = file->Error();
    }
    reason = core::PathText(path) + " cannot be written: " + reason;
    return std::nullopt;
  }

  const core::FileSource& m_files;
  const std::string m_folder;
  std::set<std::string> m_taken;  // models, folded
};

}  // namespace

std::optional<std::string> UnpackModel(const std::string& name, const core::FileSource& files,
                                       const std::string& folder, std::string& reason) {
  return Unpacking(files, folder).Take(name, reason);
}

}  // namespace tarnwick::jobs
