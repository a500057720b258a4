#include "view/scene/make_scene.h"

#include <array>
#include <cmath>

#include "core/paths.h"
#include "view/scene/complete_scene.h"
#include "view/scene/included_models.h"
#include "view/scene/model_frames.h"
#include "view/scene/model_loading.h"
#include "view/scene/model_parts.h"

namespace tarnwick::view {

namespace {

/// What a model may ask for, in bytes: a triangle costs some hundred, and takes some dozen in its files.
constexpr int64_t SpendBase = int64_t{64} << 20;
constexpr int64_t SpendForEachByteRead = 64;

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
  Maker(const std::string& path, core::TroubleSink& troubles, const core::FileSource& files, SceneWish wish)
      : m_troubles(troubles),
        m_files(files),
        m_wish(wish),
        m_frames(std::make_shared<ModelFrames>(troubles)),
        m_reader(m_frames->Reader()),
        m_loading(path, files, m_reader) {
    m_scene.Path = path;
  }

  std::optional<Scene> Make() {
    if (!m_loading.LoadModel()) return std::nullopt;
    const auto header = m_reader.Model.Header();
    m_scene.Version = header->Version;
    m_scene.Flags = header->Flags;
    m_scene.Name = core::FixedText(header->Name);
    m_loading.LoadMesh();
    m_loading.LoadAnimBlocks();
    m_reader.SetSpendLimit(SpendBase + SpendForEachByteRead * m_loading.FileBytes());
    TakeSkeleton(m_reader, m_scene);
    TakeMaterials(m_reader, m_scene);
    TakeSequences(m_reader, m_scene);
    TakeFace(m_reader, m_scene);
    TakeMesh(m_reader, m_scene);
    if (!m_scene.Animations.empty() && !m_scene.Bones.empty()) m_scene.Frames = m_frames;
    const int64_t included = m_wish.IncludedModels ? TakeIncludedModels(m_reader, m_files, m_troubles, m_scene) : 0;
    m_scene.RestTurn = RestTurnOf(m_scene);
    CompleteScene(m_scene);
    if (const auto phy = m_loading.ReadBeside(".phy")) TakeHulls(m_reader, *phy, m_scene);
    m_scene.FileBytes = m_loading.FileBytes() + included;
    m_frames->FallSilent();
    return std::move(m_scene);
  }

 private:
  core::TroubleSink& m_troubles;
  const core::FileSource& m_files;
  const SceneWish m_wish;
  std::shared_ptr<ModelFrames> m_frames;
  model::ModelReader& m_reader;
  ModelLoading m_loading;
  Scene m_scene;
};

}  // namespace

std::optional<Scene> MakeScene(const std::string& path, core::TroubleSink& troubles, const core::FileSource& files,
                               SceneWish wish) {
  return Maker(path, troubles, files, wish).Make();
}

}  // namespace tarnwick::view
