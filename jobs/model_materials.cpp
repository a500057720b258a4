#include "jobs/model_materials.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

#include "archives/folded_text.h"
#include "archives/safe_name.h"
#include "core/key_values.h"
#include "core/number_parse.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "core/whole_path.h"
#include "images/conversion.h"
#include "jobs/image_questions.h"
#include "jobs/made_folder.h"
#include "jobs/scratch_directory.h"
#include "jobs/texture_images.h"
#include "model/loaded_model.h"
#include "textures/texture_export.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

/// Looks for materials that a model may cost; a sound one names some dozens in some folders.
constexpr size_t MostLooks = 20'000;
/// Materials and textures that are written of one model.
constexpr size_t MostFiles = 4'096;
constexpr size_t LargestMaterial = size_t{1} << 20;

/// The names of a model's materials and of the folders in which they are looked for.
struct MaterialNames {
  std::vector<std::string> Names;
  std::vector<std::string> Folders;
};

MaterialNames NamesOf(const model::LoadedModel& model) {
  MaterialNames names;
  const auto header = model.Header();
  const auto textures = model.View().Array<model::StudioTexture>(header->TextureOffset, header->TextureCount);
  for (int64_t i = 0; textures && i < textures->Count(); ++i) {
    if (const auto name = model::TextureName(model, i)) names.Names.emplace_back(*name);
  }
  const auto folders =
      model.View().Array<model::StudioOffset>(header->MaterialDirectoryOffset, header->MaterialDirectoryCount);
  for (int64_t i = 0; folders && i < folders->Count(); ++i) {
    if (const auto name = model.Name((*folders)[i]->Offset)) names.Folders.emplace_back(*name);
  }
  return names;
}

bool EndsIn(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && core::EqualIgnoringCase(text.substr(text.size() - end.size()), end);
}

std::string WithoutEnding(std::string name, std::string_view ending) {
  if (EndsIn(name, ending)) name.resize(name.size() - ending.size());
  return name;
}

/// The name in the game of a file below "materials", in small letters, so that names that differ in case are one file.
std::string GameName(const std::string& below) {
  return archives::FoldedText(archives::PlainName("materials/" + below));
}

/// Whether the value of a key could be the name of a file: no number, vector, matrix, nor what the engine makes itself.
bool CouldBeName(const std::string& value) {
  if (value.empty() || value.find_first_of("[{") == 0 || core::EqualIgnoringCase(value, "env_cubemap")) return false;
  if (core::LowerAscii(core::LastComponent(value)).starts_with("_rt_")) return false;
  size_t length = 0;
  core::ParseReal(value, &length);
  return length != value.size();
}

/// Whether a key of a material stands for a texture, so that one that is not there is missing.
bool IsTextureKey(std::string_view key) {
  while (!key.empty() && key.back() >= '0' && key.back() <= '9') key.remove_suffix(1);
  for (const std::string_view end : {"texture", "map", "mask", "$detail", "$iris", "$compress", "$stretch"}) {
    if (EndsIn(key, end)) return true;
  }
  return false;
}

class Copying {
 public:
  Copying(const MaterialCopies& copies, const archives::ContentFiles& content, const images::ImageWorker& worker,
          ItemRun& run)
      : m_copies(copies), m_content(content), m_worker(worker), m_run(run) {}

  void Work() {
    model::LoadedModel model;
    auto mdl = model::LoadModelFile(m_copies.Model, nullptr, m_content);
    if (!mdl) return;  // told by the decompiler
    model.Mdl = std::move(*mdl);
    if (!model.View().At<model::StudioHeader>(0)) return;
    m_owner = model.Mdl.Path();
    const MaterialNames names = NamesOf(model);
    for (const std::string& name : names.Names) {
      if (Stopped()) return;
      TakeMaterial(name, names.Folders);
    }
  }

 private:
  bool Stopped() const { return m_run.Stop.stop_requested() || m_failed; }

  void Warn(core::TroubleKind kind, const std::string& file, std::string text, std::string alike) {
    m_run.Log("Warning: " + text + "\r\n");
    m_run.Tell({.Level = core::Severity::Warning,
                .Kind = kind,
                .File = file,
                .Text = std::move(text),
                .Alike = std::move(alike)});
  }

  void TellMissing(const std::string& what, const std::vector<std::string>& sought) {
    std::string names;
    for (const std::string& name : sought) names += (names.empty() ? "" : ", ") + archives::PrintableName(name);
    Warn(core::TroubleKind::Missing, sought.front(),
         "Missing " + what + " " + names + " (looked in " + m_content.PlacesFor(m_owner) + ")", "missing " + what);
  }

  /// Whether another file may be written; told once if not.
  bool MayTake() {
    if (m_taken.size() < MostFiles && m_looks < MostLooks) return true;
    if (!std::exchange(m_limitTold, true)) {
      Warn(core::TroubleKind::Refused, m_owner, "The model names so many materials that not all are written",
           "too many materials");
    }
    return false;
  }

  /// Takes note of a file that is new, and tells whether it may be written.
  bool Take(const std::string& inside) {
    m_taken.insert(inside);
    const std::string reason = archives::UnsafeReason(inside);
    if (reason.empty()) return true;
    const std::string shown = archives::PrintableName(inside);
    Warn(core::TroubleKind::Refused, shown, shown + " is not written: " + reason, "a material is not written");
    return false;
  }

  void TakeMaterial(const std::string& name, const std::vector<std::string>& folders) {
    std::vector<std::string> sought;
    for (const std::string& folder : folders.empty() ? std::vector<std::string>{""} : folders) {
      if (!MayTake()) return;
      ++m_looks;
      sought.push_back(GameName(folder + "/" + WithoutEnding(name, ".vmt") + ".vmt"));
      if (m_taken.contains(sought.back())) return;
      if (const auto found = m_content.FindGameFile(m_owner, sought.back())) return CopyMaterial(sought.back(), *found);
    }
    if (m_taken.insert(sought.front()).second) TellMissing("material", sought);
  }

  /// Writes the material and what it names. `inside` begins with "materials/".
  void CopyMaterial(const std::string& inside, const std::string& found) {
    if (!Take(inside)) return;
    std::string reason;
    const auto image = m_content.Read(found, &reason);
    if (image && image->Bytes().size() > LargestMaterial) reason = "it is larger than 1 MiB";
    if (!reason.empty() || !image) {
      return Warn(core::TroubleKind::Unreadable, found, found + ": " + reason, "a material cannot be read");
    }
    const std::string_view text(reinterpret_cast<const char*>(image->Bytes().data()), image->Bytes().size());
    if (!Write(inside, text)) return;
    const core::KeyValues material = core::ReadKeyValues(text);
    if (!material.Error.empty()) {
      Warn(core::TroubleKind::Damaged, found, found + ": " + material.Error, "a material is damaged");
    }
    for (const core::KeyValue& root : material.Roots) TakeNames(root);
  }

  void TakeNames(const core::KeyValue& block) {
    for (const core::KeyValue& entry : block.Children) {
      if (Stopped()) return;
      if (entry.IsBlock) {
        TakeNames(entry);
      } else if (core::EqualIgnoringCase(entry.Key, "include")) {
        const std::string inside = archives::FoldedText(archives::PlainName(entry.Value));
        if (m_taken.contains(inside) || !MayTake()) continue;
        ++m_looks;
        if (const auto found = m_content.FindGameFile(m_owner, inside)) {
          CopyMaterial(inside, *found);
        } else {
          TellMissing("material", {inside});
        }
      } else if (entry.Key.starts_with("$") && CouldBeName(entry.Value)) {
        TakeTexture(entry.Key, entry.Value);
      }
    }
  }

  void TakeTexture(const std::string& key, const std::string& value) {
    const std::string stem = GameName(WithoutEnding(value, ".vtf"));
    const std::string inside = stem + ".vtf";
    if (m_taken.contains(inside) || !MayTake()) return;
    ++m_looks;
    const auto found = m_content.FindGameFile(m_owner, inside);
    if (!found) {
      if (!IsTextureKey(key)) return;
      m_taken.insert(inside);
      return TellMissing("texture", {inside});
    }
    if (!Take(inside)) return;
    const TextureImages texture(*found, m_content);
    if (texture.Texture() == nullptr) {
      return Warn(core::TroubleKind::Damaged, *found, *found + ": " + texture.Problem(), "a texture cannot be read");
    }
    WriteImages(texture, stem);
  }

  void WriteImages(const TextureImages& texture, const std::string& stem) {
    const std::string path = PathOf(stem + "." + m_copies.Format);
    if (!MakeFolderOf(path)) return;
    std::string reason;
    std::vector<std::string> written;
    const auto keep = [&](const std::string& file, const auto&, auto) { written.push_back(file); };
    if (core::EqualIgnoringCase(m_copies.Format, "tga")) {
      if (!textures::ExportTexture(*texture.Texture(), 0, path, keep, reason)) Fail(reason, path);
      for (const std::string& file : written) Record(file);
      return;
    }
    const ScratchDirectory scratch;
    const std::string tga = core::PathText(scratch.Path() / "texture.tga");
    if (scratch.Path().empty()) return Fail("temporary files: " + scratch.Problem(), path);
    if (!textures::ExportTexture(*texture.Texture(), 0, tga, keep, reason)) return Fail(reason, tga);
    const auto context = ConversionFor(m_run, m_run, m_worker, false);
    const std::vector<std::string> paths = texture.PathsFor(path);
    for (size_t i = 0; i < written.size() && i < paths.size() && !Stopped(); ++i) {
      if (images::ConvertTgaToImage(written[i], paths[i], context)) Record(paths[i]);
    }
  }

  bool Write(const std::string& inside, std::string_view text) {
    const std::string path = PathOf(inside);
    if (!MakeFolderOf(path)) return false;
    std::string reason;
    auto file = core::OutputFile::Create(path, &reason);
    if (file) {
      file->Write(text);
      if (!file->Commit()) reason = file->Error();
    }
    if (!file || !reason.empty()) {
      Fail(path + ": " + reason, path);
      return false;
    }
    Record(path);
    return true;
  }

  std::string PathOf(const std::string& inside) const { return core::PathBelow(m_copies.Directory, inside); }

  bool MakeFolderOf(const std::string& path) {
    const std::string folder = core::PathText(core::NativePath(path).parent_path());
    const std::string problem = m_folder.Make(folder);
    if (!problem.empty()) Fail(folder + " cannot be made: " + problem, folder);
    return problem.empty();
  }

  /// What cannot be written ends the work: what follows would meet the same.
  void Fail(const std::string& text, const std::string& file) {
    m_failed = true;
    m_run.Fail(core::TroubleKind::Unwritable, text, file);
  }

  void Record(const std::string& path) {
    std::error_code ignored;
    m_run.Result.Files.push_back({path, fs::file_size(core::NativePath(path), ignored)});
    m_run.Progressed(path, m_run.Result.Files.size(), m_run.Result.Files.size());
  }

  const MaterialCopies& m_copies;
  const archives::ContentFiles& m_content;
  const images::ImageWorker& m_worker;
  ItemRun& m_run;
  MadeFolder m_folder;
  std::string m_owner;            // where the model was found
  std::set<std::string> m_taken;  // what was written or told
  size_t m_looks = 0;
  bool m_limitTold = false;
  bool m_failed = false;
};

}  // namespace

void CopyModelMaterials(const MaterialCopies& copies, const archives::ContentFiles& content,
                        const images::ImageWorker& worker, ItemRun& run) {
  Copying(copies, content, worker, run).Work();
}

}  // namespace tarnwick::jobs
