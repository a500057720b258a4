#include "view/scene/model_loading.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"
#include "model/anim_block_file.h"
#include "model/companion_files.h"
#include "model/vertex_file.h"
#include "model/vtx_layout.h"

namespace tarnwick::view {

namespace {

/// The same triangles stand in each of these; the first is what today's graphics processors get.
constexpr std::string_view VtxExtensions[] = {".dx90.vtx", ".vtx", ".dx80.vtx", ".sw.vtx"};
constexpr std::string_view ModelId = "IDST";
/// Versions whose records are laid out as model/ has them.
constexpr int32_t LowestVersion = 44;
constexpr int32_t HighestVersion = 49;

}  // namespace

std::optional<core::FileImage> ModelLoading::Read(const std::string& path, std::string& reason) const {
  const auto found = m_files.FindCompanion(path);
  return found ? m_files.Read(*found, &reason) : std::nullopt;
}

bool ModelLoading::LoadModel() {
  std::string reason = "there is no such file";
  auto mdl = Read(m_path, reason);
  if (!mdl) return Refuse(core::TroubleKind::Unreadable, "Unable to read " + m_path + ": " + reason);
  if (!mdl->View().At<model::StudioHeader>(0)) {
    const int64_t size = mdl->View().Size();
    return Refuse(
        core::TroubleKind::Unreadable,
        "Unable to read " + m_path + ": " +
            (size == 0 ? "it is empty" : "its " + std::to_string(size) + " bytes are fewer than a model's header has"));
  }
  Count(*mdl);
  m_reader.Model.Mdl = std::move(*mdl);
  const auto header = m_reader.Model.Header();
  const bool isKnown = header->Version >= LowestVersion && header->Version <= HighestVersion;
  if (std::string_view(header->Id, 4) != ModelId) {
    return Refuse(core::TroubleKind::Unknown, m_path + " is no compiled model: it does not begin with IDST");
  }
  if (!isKnown) {
    m_reader.Tell({core::Severity::Warning, core::TroubleKind::Unknown, m_path, std::nullopt,
                   m_path + " is of version " + std::to_string(header->Version) +
                       "; versions 44 to 49 are known, and what is shown may be wrong"});
  }
  return true;
}

bool ModelLoading::Refuse(core::TroubleKind kind, std::string text) {
  m_reader.Tell(
      {.Level = m_failure, .Kind = kind, .File = m_path, .Text = std::move(text), .Alike = "a model cannot be read"});
  return false;
}

std::string ModelLoading::Beside(std::string_view extension) const {
  return m_path.substr(0, m_path.size() - std::min<size_t>(4, m_path.size())) + std::string(extension);
}

std::optional<core::FileImage> ModelLoading::ReadBeside(std::string_view extension) {
  std::string reason;
  auto file = Read(Beside(extension), reason);
  if (file) {
    Count(*file);
  } else if (!reason.empty()) {
    TellMissing(Beside(extension), core::TroubleKind::Unreadable, reason);
  }
  return file;
}

void ModelLoading::TellMissing(const std::string& path, core::TroubleKind kind, const std::string& reason) {
  m_reader.Tell({.Level = m_failure,
                 .Kind = kind,
                 .File = path,
                 .Text = "Unable to read " + path + ": " + reason,
                 .Alike = "a file beside the model cannot be read"});
}

void ModelLoading::LoadMesh() {
  if (m_reader.Model.Header()->BodyPartCount == 0) {
    model::UseVvdFile(m_reader, std::nullopt);
    return;
  }
  LoadVtx();
  LoadVvd();
}

/// The first .vtx file that was made together with the model, else the first one.
void ModelLoading::LoadVtx() {
  std::optional<core::FileImage> first;
  for (const std::string_view extension : VtxExtensions) {
    auto file = ReadBeside(extension);
    const auto header = file ? file->View().At<model::VtxHeader>(0) : std::nullopt;
    if (!header) continue;
    const bool matches = (*header)->Checksum == m_reader.Model.Header()->Checksum;
    if (matches || !first) first = std::move(file);
    if (matches) break;
  }
  if (!first) {
    return TellMissing(Beside(VtxExtensions[0]), core::TroubleKind::Missing,
                       "there is no .vtx file beside the model, so it has no mesh");
  }
  m_reader.Model.Vtx = std::move(first);
  model::CheckChecksum(m_reader, m_reader.Model.Vtx->Path(),
                       (*m_reader.Model.Vtx->View().At<model::VtxHeader>(0))->Checksum);
  m_reader.Model.Layout = model::FindVtxLayout(m_reader);
}

void ModelLoading::LoadVvd() {
  auto file = ReadBeside(".vvd");
  if (!file) {
    TellMissing(Beside(".vvd"), core::TroubleKind::Missing,
                "there is no .vvd file beside the model, so it has no mesh");
  }
  model::UseVvdFile(m_reader, std::move(file));
}

void ModelLoading::LoadAnimBlocks() {
  const auto header = m_reader.Model.Header();
  if (header->AnimBlockCount <= 0) return model::UseAnimBlockFile(m_reader, std::nullopt);
  const auto name = m_reader.Model.NameOf(header, header->AnimBlockNameOffset);
  const std::string path = std::string(core::DirectoryWithSeparator(m_path)) +
                           std::string(name ? core::LastComponent(*name) : std::string_view());
  std::string reason = "there is no such file";
  auto file = name && !name->empty() ? Read(path, reason) : std::nullopt;
  if (file) {
    Count(*file);
  } else {
    TellMissing(path, core::TroubleKind::Missing, reason + "; animations that lie in it keep the default pose");
  }
  model::UseAnimBlockFile(m_reader, std::move(file));
}

}  // namespace tarnwick::view
