#include "view/scene/make_scene.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/paths.h"
#include "model/anim_block_file.h"
#include "model/companion_files.h"
#include "model/vertex_file.h"
#include "model/vtx_layout.h"
#include "view/scene/model_frames.h"
#include "view/scene/model_parts.h"

namespace tarnwick::view {

namespace {

/// The same triangles stand in each of these; the first is what today's graphics processors get.
constexpr std::string_view VtxExtensions[] = {".dx90.vtx", ".vtx", ".dx80.vtx", ".sw.vtx"};
/// What a model may ask for, in bytes: a triangle costs some hundred, and takes some dozen in its files.
constexpr int64_t SpendBase = int64_t{64} << 20;
constexpr int64_t SpendForEachByteRead = 64;
constexpr std::string_view ModelId = "IDST";
/// Versions whose records are laid out as model/ has them.
constexpr int32_t LowestVersion = 44;
constexpr int32_t HighestVersion = 49;

/// How the roots of the rest pose are turned to stand as they do when the model is animated: compilers turn animations
/// a quarter, but not the rest pose, and nothing of a static model.
Quat RestTurnOf(const Scene& scene) {
  const Quat quarter{0, 0, std::sqrt(0.5f), std::sqrt(0.5f)};
  if ((scene.Flags & model::ModelFlagStatic) != 0) return {};
  if (scene.Frames == nullptr || scene.Bones.empty()) return quarter;
  for (const SceneSequence& sequence : scene.Sequences) {
    if (sequence.Animations.empty() || sequence.IsDelta() || !sequence.BoneWeights.empty()) continue;
    const int32_t animation = sequence.Animations.front();
    if (scene.Animations[static_cast<size_t>(animation)].IsDelta) continue;
    std::vector<BonePose> frame(scene.Bones.size());
    scene.Frames->Read(animation, 0, frame);
    const Quat posed = frame.front().Rotation;
    const auto nearness = [&](const Quat& rest) {
      return std::fabs(posed.X * rest.X + posed.Y * rest.Y + posed.Z * rest.Z + posed.W * rest.W);
    };
    const Quat rest = scene.Bones.front().Rotation;
    return nearness(rest) > nearness(quarter * rest) ? Quat{} : quarter;
  }
  return quarter;
}

class Maker {
 public:
  Maker(const std::string& path, core::TroubleSink& troubles, const core::FileSource& files)
      : m_path(path), m_files(files), m_frames(std::make_shared<ModelFrames>(troubles)), m_reader(m_frames->Reader()) {
    m_scene.Path = path;
  }

  std::optional<Scene> Make() {
    if (!LoadModel()) return std::nullopt;
    LoadVtx();
    LoadVvd();
    LoadAnimBlocks();
    m_reader.SetSpendLimit(SpendBase + SpendForEachByteRead * m_scene.FileBytes);
    TakeSkeleton(m_reader, m_scene);
    TakeMaterials(m_reader, m_scene);
    TakeSequences(m_reader, m_scene);
    TakeFace(m_reader, m_scene);
    TakeMesh(m_reader, m_scene);
    if (!m_scene.Animations.empty() && !m_scene.Bones.empty()) m_scene.Frames = m_frames;
    m_scene.RestTurn = RestTurnOf(m_scene);
    m_scene.Complete();
    if (const auto phy = ReadBeside(".phy")) TakeHulls(m_reader, *phy, m_scene);
    m_frames->FallSilent();
    return std::move(m_scene);
  }

 private:
  /// The file of that name, in any case, with what goes with the model.
  std::optional<core::FileImage> Read(const std::string& path, std::string& reason) const {
    const auto found = m_files.FindCompanion(path);
    return found ? m_files.Read(*found, &reason) : std::nullopt;
  }

  bool LoadModel() {
    std::string reason = "there is no such file";
    auto mdl = Read(m_path, reason);
    if (mdl && !mdl->View().At<model::StudioHeader>(0)) {
      const int64_t size = mdl->View().Size();
      reason = size == 0 ? "it is empty" : "its " + std::to_string(size) + " bytes are fewer than a model's header has";
      mdl.reset();
    }
    if (!mdl) return Refuse(core::TroubleKind::Unreadable, "Unable to read " + m_path + ": " + reason);
    Count(*mdl);
    m_reader.Model.Mdl = std::move(*mdl);
    const auto header = m_reader.Model.Header();
    m_scene.Version = header->Version;
    m_scene.Flags = header->Flags;
    m_scene.Name = core::FixedText(header->Name);
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

  bool Refuse(core::TroubleKind kind, std::string text) {
    m_reader.Tell({.Kind = kind, .File = m_path, .Text = std::move(text), .Alike = "a model cannot be read"});
    return false;
  }

  std::string Beside(std::string_view extension) const {
    return m_path.substr(0, m_path.size() - std::min<size_t>(4, m_path.size())) + std::string(extension);
  }

  std::optional<core::FileImage> ReadBeside(std::string_view extension) {
    std::string reason;
    auto file = Read(Beside(extension), reason);
    if (file) {
      Count(*file);
    } else if (!reason.empty()) {
      TellMissing(Beside(extension), core::TroubleKind::Unreadable, reason);
    }
    return file;
  }

  void TellMissing(const std::string& path, core::TroubleKind kind, const std::string& reason) {
    m_reader.Tell({.Kind = kind,
                   .File = path,
                   .Text = "Unable to read " + path + ": " + reason,
                   .Alike = "a file beside the model cannot be read"});
  }

  void Count(const core::FileImage& file) { m_scene.FileBytes += file.View().Size(); }

  /// The first .vtx file that was made together with the model, else the first one.
  void LoadVtx() {
    if (m_reader.Model.Header()->BodyPartCount == 0) return;
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

  void LoadVvd() {
    if (m_reader.Model.Header()->BodyPartCount == 0) {
      model::UseVvdFile(m_reader, std::nullopt);
      return;
    }
    auto file = ReadBeside(".vvd");
    if (!file) {
      TellMissing(Beside(".vvd"), core::TroubleKind::Missing,
                  "there is no .vvd file beside the model, so it has no mesh");
    }
    model::UseVvdFile(m_reader, std::move(file));
  }

  void LoadAnimBlocks() {
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

  std::string m_path;
  const core::FileSource& m_files;
  std::shared_ptr<ModelFrames> m_frames;
  model::ModelReader& m_reader;
  Scene m_scene;
};

}  // namespace

std::optional<Scene> MakeScene(const std::string& path, core::TroubleSink& troubles, const core::FileSource& files) {
  return Maker(path, troubles, files).Make();
}

}  // namespace tarnwick::view
