#include "view/scene/included_models.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "core/paths.h"
#include "model/animation_records.h"
#include "model/script_records.h"
#include "view/scene/model_frames.h"
#include "view/scene/model_loading.h"
#include "view/scene/model_parts.h"
#include "view/scene/model_values.h"

namespace tarnwick::view {

namespace {

/// More than any sound model includes, by way of others too.
constexpr size_t MostModels = 64;
/// What an included model may ask for, in bytes: it gives names and tables alone.
constexpr int64_t SpendBase = int64_t{4} << 20;
constexpr int64_t SpendForEachByteRead = 64;
/// What stands in a table of bones for one that is not there.
constexpr int32_t NoBone = -1;

using Names = std::map<std::string, int32_t>;  // by small letters, the first of each

template <typename T>
Names NamesOf(const std::vector<T>& things) {
  Names names;
  for (size_t i = 0; i < things.size(); ++i) {
    if (!things[i].Name.empty()) names.emplace(core::LowerAscii(things[i].Name), static_cast<int32_t>(i));
  }
  return names;
}

int32_t Find(const Names& names, const std::string& name) {
  const auto found = names.find(core::LowerAscii(name));
  return found == names.end() ? -1 : found->second;
}

/// The frames of a model and of those that it includes, as poses of the model's bones.
class JoinedFrames : public FrameSource {
 public:
  JoinedFrames(std::shared_ptr<FrameSource> own, int32_t ownCount, size_t bones)
      : m_own(std::move(own)), m_count(ownCount), m_bones(bones) {}

  /// Adds the animations of an included model; `toOther` has its bone of each bone.
  void Add(std::shared_ptr<ModelFrames> frames, std::vector<SceneAnimation> animations, std::vector<int32_t> toOther,
           size_t otherBones) {
    m_others.push_back({m_count, std::move(frames), std::move(animations), std::move(toOther), otherBones});
    m_count += static_cast<int32_t>(m_others.back().Animations.size());
  }

  /// What bones have that an included model lacks.
  void SetDefaults(std::vector<BonePose> defaults) { m_defaults = std::move(defaults); }

  void Read(int32_t animation, int32_t first, std::span<BonePose> poses) override {
    const auto behind = std::upper_bound(m_others.begin(), m_others.end(), animation,
                                         [](int32_t number, const Other& other) { return number < other.First; });
    if (behind == m_others.begin()) {
      if (m_own != nullptr) m_own->Read(animation, first, poses);
      return;
    }
    const Other& other = *std::prev(behind);
    const int32_t number = animation - other.First;
    const bool isDelta = other.Animations[static_cast<size_t>(number)].IsDelta;
    const size_t frames = poses.size() / m_bones;
    m_room.resize(frames * other.Bones);
    other.Frames->Read(number, first, m_room);
    for (size_t frame = 0; frame < frames; ++frame) {
      const BonePose* const from = m_room.data() + frame * other.Bones;
      BonePose* const to = poses.data() + frame * m_bones;
      for (size_t b = 0; b < m_bones; ++b) {
        const int32_t bone = other.ToOther[b];
        to[b] = bone != NoBone ? from[bone] : isDelta ? BonePose{} : m_defaults[b];
      }
    }
  }

 private:
  struct Other {
    int32_t First = 0;
    std::shared_ptr<ModelFrames> Frames;
    std::vector<SceneAnimation> Animations;
    std::vector<int32_t> ToOther;
    size_t Bones = 0;
  };

  std::shared_ptr<FrameSource> m_own;  // null: the model has no animations itself
  int32_t m_count;
  size_t m_bones;
  std::vector<Other> m_others;  // by First
  std::vector<BonePose> m_defaults;
  std::vector<BonePose> m_room;
};

class Joining {
 public:
  Joining(const core::FileSource& files, core::TroubleSink& troubles, Scene& scene)
      : m_files(files),
        m_troubles(troubles),
        m_scene(scene),
        m_bones(NamesOf(scene.Bones)),
        m_sequences(NamesOf(scene.Sequences)),
        m_parameters(NamesOf(scene.PoseParameters)),
        m_chains(NamesOf(scene.IkChains)),
        m_frames(std::make_shared<JoinedFrames>(scene.Frames, static_cast<int32_t>(scene.Animations.size()),
                                                scene.Bones.size())) {
    m_taken.insert(core::LowerAscii(scene.Path));
    std::vector<BonePose> defaults;
    for (const SceneBone& bone : scene.Bones) defaults.push_back({bone.Rotation, bone.Position});
    m_frames->SetDefaults(std::move(defaults));
  }

  /// Takes all models that the one in `reader` includes.
  void TakeAllOf(model::ModelReader& reader) {
    const auto header = reader.Model.Header();
    const int64_t count = header->IncludeModelCount;
    if (count == 0) return;
    const auto table =
        reader.Table<model::StudioIncludeModel>("included model table", header->IncludeModelOffset, count);
    if (!table) return;
    const std::string owner = reader.Model.Mdl.Path();
    for (const auto record : *table) {
      if (m_scene.Included.size() >= MostModels || !reader.Spend(model::RecordCost)) return;
      const std::string name = TextOf(reader, record, record->NameOffset);
      if (!name.empty()) Take(name, owner);
    }
  }

  int64_t FileBytes() const { return m_fileBytes; }
  void Finish() {
    if (m_scene.Included.empty() || m_scene.Animations.empty() || m_scene.Bones.empty()) return;
    m_scene.Frames = m_frames;
  }

 private:
  std::optional<std::string> FindModel(const std::string& name, const std::string& owner) const {
    if (auto found = m_files.FindGameFile(owner, name)) return found;
    if (auto found = m_files.FindGameFile(owner, "models/" + name)) return found;
    // Files that were taken out of their folders lie together.
    return m_files.FindBeside(std::string(core::DirectoryWithSeparator(owner)) +
                              std::string(core::LastComponent(name)));
  }

  void Take(const std::string& name, const std::string& owner) {
    if (!m_names.insert(core::LowerAscii(name)).second) return;
    const auto path = FindModel(name, owner);
    if (!path) {
      m_troubles.Tell({.Level = core::Severity::Warning,
                       .Kind = core::TroubleKind::Missing,
                       .File = name,
                       .Text = "The included model " + name + " was not found; the sequences that it holds are missing",
                       .Alike = "an included model is missing"});
      return;
    }
    if (!m_taken.insert(core::LowerAscii(*path)).second) return;
    auto frames = std::make_shared<ModelFrames>(m_troubles);
    model::ModelReader& reader = frames->Reader();
    ModelLoading loading(*path, m_files, reader, core::Severity::Warning);
    if (loading.LoadModel()) {
      loading.LoadAnimBlocks();
      m_scene.Included.push_back(*path);
      reader.SetSpendLimit(SpendBase + SpendForEachByteRead * loading.FileBytes());
      Scene other;
      TakeSkeleton(reader, other);
      TakeSequences(reader, other);
      Join(other, frames);
      TakeAllOf(reader);
    }
    m_fileBytes += loading.FileBytes();
    frames->FallSilent();
  }

  void Join(Scene& other, std::shared_ptr<ModelFrames> frames) {
    const size_t count = m_scene.Bones.size();
    std::vector<int32_t> toOther(count, NoBone);
    m_fromOther.assign(other.Bones.size(), NoBone);
    for (size_t b = 0; b < other.Bones.size(); ++b) {
      m_fromOther[b] = Find(m_bones, other.Bones[b].Name);
      if (m_fromOther[b] != NoBone) toOther[static_cast<size_t>(m_fromOther[b])] = static_cast<int32_t>(b);
    }
    const std::vector<int32_t> parameters = JoinParameters(other);
    const std::vector<int32_t> chains = JoinChains(other);
    const auto firstAnimation = static_cast<int32_t>(m_scene.Animations.size());
    m_scene.Animations.insert(m_scene.Animations.end(), other.Animations.begin(), other.Animations.end());
    // A sequence may be a layer of one that stands ahead of it.
    std::vector<int32_t> places(other.Sequences.size());
    std::vector<size_t> isNew;
    for (size_t i = 0; i < other.Sequences.size(); ++i) {
      const SceneSequence& sequence = other.Sequences[i];
      const int32_t known = Find(m_sequences, sequence.Name);
      const bool isDeclared = known >= 0 && m_scene.Sequences[static_cast<size_t>(known)].Animations.empty();
      if (known >= 0) {
        places[i] = known;
        if (!isDeclared || sequence.Animations.empty()) continue;
      } else {
        places[i] = static_cast<int32_t>(m_scene.Sequences.size());
        m_scene.Sequences.emplace_back();
        m_sequences.emplace(core::LowerAscii(sequence.Name), places[i]);
      }
      isNew.push_back(i);
    }
    for (const size_t i : isNew) {
      SceneSequence sequence = std::move(other.Sequences[i]);
      for (int32_t& animation : sequence.Animations) animation += firstAnimation;
      for (int32_t& parameter : sequence.PoseParameters) {
        if (parameter >= 0) parameter = parameters[static_cast<size_t>(parameter)];
      }
      for (SceneAutoLayer& layer : sequence.Layers) {
        const auto number = static_cast<size_t>(layer.Sequence);
        layer.Sequence = number < places.size() ? places[number] : -1;
        if (layer.PoseParameter >= 0) layer.PoseParameter = parameters[static_cast<size_t>(layer.PoseParameter)];
      }
      MapLocks(chains, sequence.IkLocks);
      MapWeights(toOther, sequence);
      m_scene.Sequences[static_cast<size_t>(places[i])] = std::move(sequence);
    }
    m_frames->Add(std::move(frames), std::move(other.Animations), std::move(toOther), other.Bones.size());
  }

  std::vector<int32_t> JoinParameters(const Scene& other) {
    std::vector<int32_t> places;
    for (const ScenePoseParameter& one : other.PoseParameters) {
      const auto [place, isNew] =
          m_parameters.emplace(core::LowerAscii(one.Name), static_cast<int32_t>(m_scene.PoseParameters.size()));
      if (isNew) m_scene.PoseParameters.push_back(one);
      places.push_back(place->second);
    }
    return places;
  }

  /// Chains whose bones the scene has.
  std::vector<int32_t> JoinChains(const Scene& other) {
    std::vector<int32_t> places;
    for (const SceneIkChain& one : other.IkChains) {
      int32_t place = Find(m_chains, one.Name);
      if (place >= 0 && m_scene.IkChains[static_cast<size_t>(place)].Bones.front() < 0) place = NoBone;  // no limb
      SceneIkChain chain = one;
      for (int32_t& bone : chain.Bones) bone = bone < 0 ? NoBone : m_fromOther[static_cast<size_t>(bone)];
      if (place < 0 && std::find(chain.Bones.begin(), chain.Bones.end(), NoBone) == chain.Bones.end()) {
        place = static_cast<int32_t>(m_scene.IkChains.size());
        m_scene.IkChains.push_back(std::move(chain));
        m_chains.emplace(core::LowerAscii(one.Name), place);
      }
      places.push_back(place);
    }
    return places;
  }

  /// Gives locks the scene's number of their chain; those of a chain that it lacks go.
  static void MapLocks(const std::vector<int32_t>& chains, std::vector<SceneIkLock>& locks) {
    for (SceneIkLock& lock : locks) lock.Chain = chains[static_cast<size_t>(lock.Chain)];
    std::erase_if(locks, [](const SceneIkLock& lock) { return lock.Chain < 0; });
  }

  /// Bones that the other model lacks keep what lies below.
  static void MapWeights(const std::vector<int32_t>& toOther, SceneSequence& sequence) {
    if (sequence.BoneWeights.empty() && std::find(toOther.begin(), toOther.end(), NoBone) == toOther.end()) return;
    std::vector<float> weights;
    weights.reserve(toOther.size());
    for (const int32_t bone : toOther) {
      const bool isAll = bone != NoBone && sequence.BoneWeights.empty();
      weights.push_back(isAll ? 1 : bone != NoBone ? sequence.BoneWeights[static_cast<size_t>(bone)] : 0);
    }
    sequence.BoneWeights = std::move(weights);
  }

  const core::FileSource& m_files;
  core::TroubleSink& m_troubles;
  Scene& m_scene;
  const Names m_bones;
  Names m_sequences;
  Names m_parameters;
  Names m_chains;
  std::shared_ptr<JoinedFrames> m_frames;
  std::vector<int32_t> m_fromOther;  // the scene's bone of each of the model that is being joined
  std::set<std::string> m_names;     // that were looked for
  std::set<std::string> m_taken;     // paths
  int64_t m_fileBytes = 0;
};

}  // namespace

int64_t TakeIncludedModels(model::ModelReader& reader, const core::FileSource& files, core::TroubleSink& troubles,
                           Scene& scene) {
  if (reader.Model.Header()->IncludeModelCount <= 0) return 0;
  Joining joining(files, troubles, scene);
  joining.TakeAllOf(reader);
  joining.Finish();
  return joining.FileBytes();
}

}  // namespace tarnwick::view
