#include "compiler/skeleton/build_bones.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "compiler/mesh/corner_weights.h"
#include "compiler/skeleton/euler.h"
#include "compiler/skeleton/source_placement.h"
#include "core/paths.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

using model::RigidTransform;

namespace {

/// A bone that some source or statement names.
struct Candidate {
  std::string Name;
  int32_t Parent = -1;
  std::string ParentName;  // of a definition, until all bones are known
  model::Vec3 Position = {0, 0, 0};
  model::EulerAngles Angles = {0, 0, 0};
  bool Defined = false;
  bool Kept = false;
  bool Collapsed = false;
  RigidTransform ToModel;
  std::optional<RigidTransform> Realigned;
};

class BoneJoiner {
 public:
  BoneJoiner(CompileContext& context, ModelBones& bones) : m_context(context), m_plan(context.Plan), m_bones(bones) {}

  bool Run() {
    Define();
    for (const PlanBodyPart& part : m_plan.BodyParts) {
      for (const PlanModel& model : part.Models) AddNodes(model.Mesh, true);
    }
    for (const PlanLod& lod : m_plan.Lods) {
      for (const PlanReplacement& replacement : lod.Replacements) AddNodes(replacement.Mesh, true);
    }
    AddAnimationNodes();
    if (m_all.size() > 8 * MostBones) return Fail("the sources name more bones than any model can hold");
    Resolve();
    Place();
    TellRoots();
    TellWeights();
    Keep();
    return Order();
  }

 private:
  bool Fail(std::string text) {
    m_context.Error({0, 1, 1, 0}, std::move(text), core::TroubleKind::Limit);
    return false;
  }
  std::string Renamed(const std::string& name) const {
    for (const auto& [from, to] : m_plan.RenamedBones) {
      if (core::EqualIgnoringCase(from, name)) return to;
    }
    return name;
  }
  int32_t Find(const std::string& name) const {
    const auto found = m_byName.find(core::LowerAscii(Renamed(name)));
    return found == m_byName.end() ? -1 : found->second;
  }
  int32_t Add(const std::string& name) {
    const auto [found, added] =
        m_byName.try_emplace(core::LowerAscii(Renamed(name)), static_cast<int32_t>(m_all.size()));
    if (!added) return -1;
    m_all.push_back({});
    m_all.back().Name = Renamed(name);
    return found->second;
  }

  void Define() {
    for (const PlanBone& bone : m_plan.DefinedBones) {
      const int32_t number = Add(bone.Name);
      if (number < 0) continue;
      Candidate& candidate = m_all.back();
      candidate.ParentName = bone.Parent;
      candidate.Position = bone.Position;
      candidate.Angles = bone.Angles;
      candidate.Defined = true;
      candidate.Kept = true;
      const model::EulerAngles& turn = bone.FixAngles;
      const model::Vec3& move = bone.FixPosition;
      if (turn.x != 0 || turn.y != 0 || turn.z != 0 || move.x != 0 || move.y != 0 || move.z != 0) {
        candidate.Realigned = RigidTransform::Of(turn, move);
      }
    }
  }

  /// Bones that animations alone have: with the scale and the place that hold where the script first names the file.
  void AddAnimationNodes() {
    const auto& sources = m_plan.Script.Sources;
    std::vector<SourceUse> uses(sources.size());
    for (size_t m = m_plan.Motions.size(); m-- > 0;) {
      const CompilePlan::Motion& motion = m_plan.Motions[m];
      const auto take = [&](const std::vector<qc::Argument>& arguments) {
        for (const qc::Argument& argument : arguments) {
          const auto source = static_cast<size_t>(argument.Source);
          if (argument.Source >= 0 && source < uses.size()) uses[source] = motion.Settings;
        }
      };
      take(motion.Words->Arguments);
      for (const qc::Option& option : motion.Words->Options) take(option.Arguments);
    }
    for (size_t i = 0; i < sources.size(); ++i) {
      if (sources[i].Kind != qc::SourceKind::Animation) continue;
      uses[i].Source = static_cast<int32_t>(i);
      AddNodes(uses[i], false);
    }
  }

  /// Bones of a source that were not seen yet, where they stand in its first frame.
  void AddNodes(const SourceUse& use, bool isMesh) {
    const smd::SmdSource* source = m_context.Source(use.Source);
    if (source == nullptr) return;
    const auto placement = PlacementOf(use);
    std::vector<std::pair<size_t, int32_t>> added;
    for (size_t i = 0; i < source->Nodes.size(); ++i) {
      const int32_t number = Add(source->Nodes[i].Name);
      if (number >= 0) added.emplace_back(i, number);
      const int32_t known = number >= 0 ? number : Find(source->Nodes[i].Name);
      Candidate& candidate = m_all[static_cast<size_t>(known)];
      const bool unlocked = isMesh && candidate.Defined && m_plan.UnlockDefinedBones;
      if ((number < 0 && !unlocked) || source->FrameCount == 0) continue;
      const smd::SourcePose& pose = source->PoseOf(0, i);
      candidate.Position = {pose.Position.X * use.Scale, pose.Position.Y * use.Scale, pose.Position.Z * use.Scale};
      candidate.Angles = {pose.Rotation.X, pose.Rotation.Y, pose.Rotation.Z};
      if (placement && source->Nodes[i].Parent < 0) {
        const RigidTransform placed = *placement * RigidTransform::Of(candidate.Angles, candidate.Position);
        candidate.Position = MoveOf(placed);
        candidate.Angles = EulerOf(placed);
      }
    }
    for (const auto& [node, number] : added) {
      const int32_t parent = source->Nodes[node].Parent;
      if (parent < 0) continue;
      m_all[static_cast<size_t>(number)].Parent = Find(source->Nodes[static_cast<size_t>(parent)].Name);
    }
  }

  void Resolve() {
    for (Candidate& bone : m_all) {
      if (!bone.ParentName.empty()) bone.Parent = Find(bone.ParentName);
    }
    for (size_t i = 0; i < m_all.size(); ++i) CutRing(static_cast<int32_t>(i));
  }
  void CutRing(int32_t bone) {
    int32_t at = m_all[static_cast<size_t>(bone)].Parent;
    for (size_t steps = 0; at >= 0; ++steps) {
      if (at == bone || steps > m_all.size()) {
        m_context.Warning({0, 1, 1, 0}, "the bone " + qc::Shown(m_all[static_cast<size_t>(bone)].Name) +
                                            " would hang from itself; it is made a root");
        m_all[static_cast<size_t>(bone)].Parent = -1;
        return;
      }
      at = m_all[static_cast<size_t>(at)].Parent;
    }
  }

  RigidTransform WorldOf(int32_t bone) const {
    RigidTransform world;
    std::vector<int32_t> chain;
    for (int32_t at = bone; at >= 0; at = m_all[static_cast<size_t>(at)].Parent) chain.push_back(at);
    for (size_t i = chain.size(); i-- > 0;) {
      const Candidate& link = m_all[static_cast<size_t>(chain[i])];
      world = world * RigidTransform::Of(link.Angles, link.Position);
    }
    return world;
  }
  void Place() {
    for (size_t i = 0; i < m_all.size(); ++i) m_all[i].ToModel = WorldOf(static_cast<int32_t>(i));
    for (const auto& [child, parent] : m_plan.Hierarchy) {
      const int32_t bone = Find(child);
      if (bone < 0) continue;
      m_all[static_cast<size_t>(bone)].Parent = parent.empty() ? -1 : Find(parent);
      CutRing(bone);
      Rehang(m_all[static_cast<size_t>(bone)]);
    }
  }
  /// The place in the parent's space anew, from where the bones stand.
  void Rehang(Candidate& bone) {
    const RigidTransform local =
        bone.Parent < 0 ? bone.ToModel : m_all[static_cast<size_t>(bone.Parent)].ToModel.Inverse() * bone.ToModel;
    bone.Position = MoveOf(local);
    bone.Angles = EulerOf(local);
  }

  void Need(const std::string& name) {
    const int32_t bone = Find(name);
    if (bone >= 0) m_all[static_cast<size_t>(bone)].Kept = true;
  }
  void NeedWeighted(const SourceUse& use) {
    const smd::SmdSource* source = m_context.Source(use.Source);
    if (source == nullptr || source->Nodes.empty()) return;
    std::vector<int32_t> numbers;
    for (const smd::SourceNode& node : source->Nodes) numbers.push_back(std::max(Find(node.Name), 0));
    for (const smd::SourceCorner& corner : source->Corners) {
      const CornerWeights weights = WeightsOfCorner(*source, corner, numbers, m_context.Options.KeepValues);
      for (int32_t i = 0; i < weights.Count; ++i) m_all[static_cast<size_t>(weights.Bones[i])].Kept = true;
    }
  }
  /// The bones that some animation moves against their parents.
  std::vector<bool> FindMoving() const {
    constexpr float Still = 1e-5f;
    const auto differ = [](const smd::Triple& a, const smd::Triple& b) {
      return std::abs(a.X - b.X) > Still || std::abs(a.Y - b.Y) > Still || std::abs(a.Z - b.Z) > Still;
    };
    std::vector<bool> moving(m_all.size());
    for (size_t i = 0; i < m_plan.Script.Sources.size(); ++i) {
      const smd::SmdSource* source = m_context.Source(static_cast<int32_t>(i));
      if (source == nullptr || m_plan.Script.Sources[i].Kind != qc::SourceKind::Animation) continue;
      for (size_t node = 0; node < source->Nodes.size(); ++node) {
        const int32_t bone = Find(source->Nodes[node].Name);
        for (int32_t frame = 1; bone >= 0 && frame < source->FrameCount; ++frame) {
          const smd::SourcePose &a = source->PoseOf(0, node), &b = source->PoseOf(frame, node);
          if (differ(a.Position, b.Position) || differ(a.Rotation, b.Rotation))
            moving[static_cast<size_t>(bone)] = true;
        }
      }
    }
    return moving;
  }
  void TellRoots() const {
    for (const PlanBoneText& root : m_plan.Roots) {
      const int32_t bone = Find(root.Bone);
      if (bone >= 0 && m_all[static_cast<size_t>(bone)].Parent < 0) continue;
      m_context.Warning(root.At,
                        bone < 0 ? "no bone is called " + qc::Shown(root.Bone)
                                 : qc::Shown(root.Bone) + " has a parent; $root does not make it the first",
                        core::TroubleKind::Lost);
    }
  }
  void TellWeights() const {
    for (const PlanWeightList& list : m_plan.WeightLists) {
      for (const auto& [bone, weight] : list.Bones) {
        if (Find(bone) < 0)
          m_context.Warning(list.At, "no bone is called " + qc::Shown(bone) + "; its weight is left out");
      }
    }
  }
  void Keep() {
    for (const PlanBodyPart& part : m_plan.BodyParts) {
      for (const PlanModel& model : part.Models) {
        NeedWeighted(model.Mesh);
        for (const PlanFaceLine& line : model.Face) {
          if (const auto* eye = std::get_if<PlanEyeball>(&line)) Need(eye->Bone);
          if (const auto* mouth = std::get_if<PlanMouth>(&line)) Need(mouth->Bone);
        }
      }
    }
    for (const PlanLod& lod : m_plan.Lods) {
      for (const PlanReplacement& replacement : lod.Replacements) NeedWeighted(replacement.Mesh);
      for (const auto& [from, to] : lod.Bones) Need(to);
    }
    for (const PlanAttachment& attachment : m_plan.Attachments) {
      if (!attachment.Rigid) Need(attachment.Bone);
    }
    for (const PlanHitboxSet& set : m_plan.HitboxSets) {
      for (const PlanHitbox& box : set.Boxes) Need(box.Bone);
    }
    for (const std::string& name : m_plan.MergedBones) Need(name);
    for (const PlanIkChain& chain : m_plan.IkChains) Need(chain.Bone);
    for (const PlanJiggleBone& jiggle : m_plan.JiggleBones) Need(jiggle.Bone);
    for (const std::string& name : m_plan.CollapsedBones) {
      const int32_t bone = Find(name);
      if (bone < 0) continue;
      Candidate& collapsed = m_all[static_cast<size_t>(bone)];
      collapsed.Collapsed = collapsed.Parent >= 0;
      if (collapsed.Parent < 0) {
        m_context.Warning({0, 1, 1, 0}, "$alwayscollapse of " + qc::Shown(name) +
                                            " is passed over: it has no parent that could take its place");
      }
    }
    const std::vector<bool> moving = m_plan.CollapseBones ? FindMoving() : std::vector<bool>();
    // A model of animations alone needs all bones.
    const bool none = std::ranges::none_of(m_all, [](const Candidate& bone) { return bone.Kept; });
    for (Candidate& bone : m_all) bone.Kept = bone.Kept || none;
    KeepParents(moving);
    // A bone that is driven needs the one that drives it.
    for (const VrdSource& source : m_context.VrdSources()) {
      for (const qc::VrdBone& helper : source.File.Bones) {
        const int32_t bone = helper.What == qc::VrdBone::Kind::Helper ? Find(std::string(helper.Name)) : -1;
        if (bone >= 0 && m_all[static_cast<size_t>(bone)].Kept) Need(std::string(helper.Driver));
      }
    }
    KeepParents(moving);
    for (Candidate& bone : m_all) bone.Kept = bone.Kept && !bone.Collapsed;
  }
  /// The parents of kept bones; all, or where bones collapse those that move.
  void KeepParents(const std::vector<bool>& moving) {
    for (size_t i = 0; i < m_all.size(); ++i) {
      if (!m_all[i].Kept) continue;
      for (int32_t at = m_all[i].Parent; at >= 0 && !m_all[static_cast<size_t>(at)].Kept;
           at = m_all[static_cast<size_t>(at)].Parent) {
        m_all[static_cast<size_t>(at)].Kept = !m_plan.CollapseBones || moving[static_cast<size_t>(at)];
      }
    }
  }

  int32_t KeptAncestor(int32_t bone) const {
    while (bone >= 0 && !m_all[static_cast<size_t>(bone)].Kept) bone = m_all[static_cast<size_t>(bone)].Parent;
    return bone;
  }

  bool Order() {
    std::vector<int32_t> numbers(m_all.size(), -1);
    if (m_all.empty()) {  // a mesh without nodes, or no source at all
      m_bones.Bones.push_back({});
      m_bones.Bones.back().Name = "root";
      return true;
    }
    for (size_t i = 0; i < m_all.size(); ++i) Emit(static_cast<int32_t>(i), numbers);
    if (m_bones.Bones.size() > MostBones) {
      return Fail("the model needs " + std::to_string(m_bones.Bones.size()) + " bones; the format holds " +
                  std::to_string(MostBones));
    }
    for (size_t i = 0; i < m_all.size(); ++i) {
      const int32_t kept = KeptAncestor(static_cast<int32_t>(i));
      const int32_t number = kept >= 0 ? numbers[static_cast<size_t>(kept)] : 0;
      if (m_all[i].Kept || m_bones.Bones.empty()) {
        m_bones.AddName(m_all[i].Name, number);
      } else {
        const RigidTransform& stands = m_bones.Bones[static_cast<size_t>(number)].ToModel;
        m_bones.AddDropped(m_all[i].Name, number, stands.Inverse() * m_all[i].ToModel);
      }
    }
    for (const auto& [from, to] : m_plan.RenamedBones) {
      const int32_t bone = m_bones.Find(to);
      if (bone < 0) continue;
      m_bones.Rename(from, bone);
      if (const RigidTransform* place = m_bones.PlaceOfDropped(to)) m_bones.AddDropped(from, bone, *place);
    }
    return true;
  }
  /// Parents come ahead of their children.
  void Emit(int32_t number, std::vector<int32_t>& numbers) {
    std::vector<int32_t> chain;
    for (int32_t at = number; at >= 0 && numbers[static_cast<size_t>(at)] < 0;
         at = m_all[static_cast<size_t>(at)].Parent) {
      chain.push_back(at);
    }
    for (size_t i = chain.size(); i-- > 0;) {
      Candidate& candidate = m_all[static_cast<size_t>(chain[i])];
      if (!candidate.Kept) continue;
      const int32_t parent = KeptAncestor(candidate.Parent);
      if (parent != candidate.Parent) {
        candidate.Parent = parent;
        Rehang(candidate);
      }
      numbers[static_cast<size_t>(chain[i])] = static_cast<int32_t>(m_bones.Bones.size());
      ModelBone& bone = m_bones.Bones.emplace_back();
      bone.Name = candidate.Name;
      bone.Parent = parent < 0 ? -1 : numbers[static_cast<size_t>(parent)];
      bone.Position = candidate.Position;
      bone.Angles = candidate.Angles;
      bone.Realigned = candidate.Realigned;
      bone.ToModel = RigidTransform::Of(bone.Angles, bone.Position);
      if (bone.Parent >= 0) bone.ToModel = m_bones.Bones[static_cast<size_t>(bone.Parent)].ToModel * bone.ToModel;
    }
  }

  CompileContext& m_context;
  const CompilePlan& m_plan;
  ModelBones& m_bones;
  std::vector<Candidate> m_all;
  std::unordered_map<std::string, int32_t> m_byName;
};

/// Which bones stand for others at each level of detail.
class LodBones {
 public:
  LodBones(CompileContext& context, const ModelBones& bones) : m_context(context), m_bones(bones) {}

  std::vector<int32_t> Of(const PlanLod& lod) {
    std::vector<int32_t> map;
    for (size_t bone = 0; bone < m_bones.Bones.size(); ++bone) map.push_back(static_cast<int32_t>(bone));
    for (const std::string& name : lod.CollapsedTrees) {
      const int32_t root = Named(name, lod.At);
      for (size_t bone = 0; root >= 0 && bone < map.size(); ++bone) {
        int32_t at = static_cast<int32_t>(bone);
        while (at > root) at = m_bones.Bones[static_cast<size_t>(at)].Parent;
        if (at == root) map[bone] = root;
      }
    }
    for (const auto& [from, to] : lod.Bones) {
      const int32_t bone = Named(from, lod.At);
      const int32_t other = m_bones.Find(to);
      if (other < 0) Tell(to, lod.At);
      if (bone >= 0 && other >= 0) map[static_cast<size_t>(bone)] = other;
    }
    // What a bone gives away goes on with the bone that gets it; a ring of replacements ends.
    for (size_t bone = 0; bone < map.size(); ++bone) {
      for (size_t steps = 0; steps < map.size(); ++steps) {
        const int32_t next = map[static_cast<size_t>(map[bone])];
        if (next == map[bone]) break;
        map[bone] = next;
      }
    }
    return map;
  }

 private:
  /// The bone of that very name. One that the model does not hold has no weights to give: its parent keeps its own.
  int32_t Named(const std::string& name, const qc::Place& at) {
    const int32_t bone = m_bones.Named(name);
    if (bone < 0 && m_bones.Find(name) < 0) Tell(name, at);
    return bone;
  }
  void Tell(const std::string& name, const qc::Place& at) {
    qc::NearName near(name);
    for (const ModelBone& bone : m_bones.Bones) near.Offer(bone.Name);
    m_context.Warning(at, "no bone is called " + qc::Shown(name) + qc::DidYouMean(near.Best()));
  }

  CompileContext& m_context;
  const ModelBones& m_bones;
};

void BuildLodBones(CompileContext& context, ModelBones& bones) {
  const std::vector<PlanLod>& lods = context.Plan.Lods;
  bones.LodBones.resize(lods.size() + 1);
  for (size_t i = 0; i < lods.size() && !bones.Static; ++i) {
    if (!lods[i].Bones.empty() || !lods[i].CollapsedTrees.empty()) {
      bones.LodBones[i + 1] = LodBones(context, bones).Of(lods[i]);
    }
  }
}

void MarkUses(CompileContext& context, ModelBones& bones) {
  const CompilePlan& plan = context.Plan;
  for (const std::string& name : plan.MergedBones) {
    if (bones.Static) return;  // its one bone follows none
    const int32_t bone = bones.Find(name);
    if (bone >= 0) bones.Bones[static_cast<size_t>(bone)].Flags |= model::BoneFlagMerge;
  }
}

}  // namespace

bool BuildBones(CompileContext& context, ModelBones& bones) {
  bones.Static = context.Plan.StaticProp;
  if (bones.Static) {
    bones.Bones.push_back({});
    bones.Bones.back().Name = "static_prop";
    bones.Bones.back().Flags = model::BoneFlagVertexLod0;
  } else if (!BoneJoiner(context, bones).Run()) {
    return false;
  }
  BuildLodBones(context, bones);
  MarkUses(context, bones);
  return true;
}

}  // namespace tarnwick::compiler
