#include "decompiler/sources/animations.h"

#include <algorithm>
#include <set>

#include "decompiler/sources/animation_storage.h"
#include "decompiler/sources/ik_chains.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/stages/animation_file.h"
#include "model/animation_check.h"
#include "model/pose_player.h"
#include "model/rotation_packing.h"
#include "model/script_records.h"
#include "model/sequence_blend.h"

namespace tarnwick::decompiler::sources {

namespace {

struct AxisWord {
  uint32_t Flag;
  std::string_view Word;
};
constexpr AxisWord AxisWords[] = {{MovementFlagX, "X"},        {MovementFlagY, "Y"},
                                  {MovementFlagZ, "Z"},        {MovementFlagLinearX, "LX"},
                                  {MovementFlagLinearY, "LY"}, {MovementFlagLinearZ, "LZ"}};

/// Whether a delta animation begins with no change at all, as one does that is the difference to its own first frame.
bool BeginsUnchanged(const core::RecordArray<StudioBone>& bones, const CheckedAnimation& animation) {
  PosePlayer player(bones, animation);
  player.GoTo(0);
  const auto still = [](const Vec3& p) { return p.x == 0 && p.y == 0 && p.z == 0; };
  const auto unturned = [](const Quat& q) { return q.x == 0 && q.y == 0 && q.z == 0; };
  return std::ranges::all_of(player.Positions(), still) && std::ranges::all_of(player.Rotations(), unturned);
}

/// Whether an animation takes a bone away from its rest pose.
bool MovesBones(const core::RecordArray<StudioBone>& bones, const CheckedAnimation& animation) {
  constexpr double Hair = 1e-3;  // units, radians
  PosePlayer player(bones, animation);
  for (int32_t frame = 0; frame < animation.FrameCount(); ++frame) {
    if (!player.GoTo(frame)) continue;
    for (int64_t i = 0; i < bones.Count(); ++i) {
      const Vec3& place = player.Positions()[static_cast<size_t>(i)];
      const Vec3 rest = bones[i]->Position;
      const double moved = std::max(
          {std::abs(double{place.x} - rest.x), std::abs(double{place.y} - rest.y), std::abs(double{place.z} - rest.z)});
      if (moved > Hair || AngleBetween(player.Rotations()[static_cast<size_t>(i)], bones[i]->Rotation) > Hair) {
        return true;
      }
    }
  }
  return false;
}

std::vector<TravelPart> TravelOf(JobContext& job, const core::Record<StudioAnimDesc>& animation) {
  std::vector<TravelPart> travel;
  if (animation->MovementCount == 0) return travel;
  const auto parts = job.Table<StudioMovement>("movement table", animation.Offset() + animation->MovementOffset,
                                               animation->MovementCount);
  if (!parts || !job.Spend(parts->Count() * RecordCost)) return travel;
  int32_t last = 0;
  for (const auto part : *parts) {
    if (part->LastFrame <= last) break;  // frames rise in sound ones
    last = part->LastFrame;
    travel.push_back({last, part->Position, part->StartSpeed, part->EndSpeed, part->Flags});
  }
  return travel;
}

/// What an IK rule has of its own in place of its chain's.
std::string IkRuleValues(JobContext& job, const StudioIkRule& rule) {
  std::string words;
  if (rule.Height != 0) words += " height " + Number(job, rule.Height);
  if (rule.Floor != 0) words += " floor " + Number(job, rule.Floor);
  if (rule.Radius != 0) words += " radius " + Number(job, rule.Radius);
  const Vec3 place = rule.Position;
  const Quat turn = rule.Rotation;
  const bool moved = place.x != 0 || place.y != 0 || place.z != 0 || turn.x != 0 || turn.y != 0 || turn.z != 0;
  if (moved) job.Lose("places that IK rules hold");
  if (rule.Slot != rule.Chain) job.Lose("slots of IK rules");
  const auto isSet = [](auto value) { return value != 0; };
  if (rule.Unused5C != 0 || std::ranges::any_of(rule.Unused40, isSet) || std::ranges::any_of(rule.Unused64, isSet)) {
    job.Lose("values of IK rules without a statement");
  }
  return words;
}

}  // namespace

Animations::Animations(JobContext& job, const core::RecordArray<StudioAnimDesc>& animations,
                       const core::RecordArray<StudioSeqDesc>& sequences)
    : m_job(job),
      m_animations(animations),
      m_owners(static_cast<size_t>(animations.Count()), -1),
      m_states(static_cast<size_t>(animations.Count())) {
  FindOwners(sequences);
}

void Animations::FindOwners(const core::RecordArray<StudioSeqDesc>& sequences) {
  std::vector<int64_t> uses(m_owners.size());
  for (int64_t i = 0; i < sequences.Count(); ++i) {
    const auto sequence = sequences[i];
    const int64_t columns = sequence->BlendSize[0], rows = sequence->BlendSize[1];
    if (columns <= 0 || rows <= 0) continue;
    const auto blends =
        m_job.Model.View().Array<StudioShort>(sequence.Offset() + sequence->BlendOffset, columns * rows);
    if (!blends || !m_job.Spend(blends->Count() * RecordCost)) continue;
    const auto label = m_job.Model.NameOf(sequence, sequence->LabelOffset);
    for (const auto entry : *blends) {
      if (!m_animations.Holds(entry->Value)) continue;
      const auto number = static_cast<size_t>(entry->Value);
      const auto animation = m_animations[entry->Value];
      const auto name = m_job.Model.NameOf(animation, animation->NameOffset);
      const bool own = blends->Count() == 1 && label && name && name->starts_with('@') && name->substr(1) == *label;
      m_owners[number] = own && uses[number] == 0 ? i : -1;
      ++uses[number];
    }
  }
}

std::optional<std::string_view> Animations::NameOf(int64_t number) const {
  if (!m_animations.Holds(number) || !m_states[static_cast<size_t>(number)].Written) return std::nullopt;
  return m_job.Model.NameOf(m_animations[number], m_animations[number]->NameOffset);
}

void Animations::WriteUpTo(int64_t number) {
  for (; m_next < std::min(number, m_animations.Count()); ++m_next) {
    State& state = m_states[static_cast<size_t>(m_next)];
    if (OwnerOf(m_next) >= 0 || state.Tried) continue;
    if (m_job.Stopped() || !m_job.ScriptWithinBounds()) return;
    const auto description = m_animations[m_next];
    const auto name = m_job.NameOf("animation name", description, description->NameOffset);
    const auto own = name ? Write(m_next, *name) : std::nullopt;
    state = {true, own.has_value()};
    if (!own) {
      m_job.Script().Text("// an animation is left out, since it cannot be read: number " + std::to_string(m_next) +
                          "\n");
      continue;
    }
    m_job.Script().Text("$animation " + Quoted(m_job, *name) + " " + Quoted(m_job, own->File) + " {\n" + own->Words +
                        "}\n");
  }
}

void Animations::Require(int64_t number) {
  if (m_animations.Holds(number)) WriteUpTo(number + 1);
}

std::optional<Animations::Own> Animations::WriteOwn(int64_t number, std::string_view label) {
  auto own = Write(number, label);
  m_states[static_cast<size_t>(number)] = {true, own.has_value()};
  return own;
}

/// A compile gives the bone of a static model one frame, at rest.
void Animations::CountLostOfStatic(int64_t number, std::string_view name) {
  if ((m_job.Model.Header()->Flags & ModelFlagStatic) == 0 || !m_job.Spend(m_animations[number]->FrameCount)) return;
  const auto checked = CheckAnimation(m_job, m_animations[number], name);
  const Skeleton* skeleton = GetSkeleton(m_job);
  if (!checked || skeleton == nullptr) return;
  if (checked->FrameCount() > 1) m_job.Lose("frames of the animations of a static model");
  if (!checked->IsDelta() && MovesBones(skeleton->Bones, *checked)) m_job.Lose("moves of the bone of a static model");
}

bool Animations::NeedDeltaBase(int64_t number) {
  const auto description = m_animations[number];
  const std::string_view name = m_job.Model.NameOf(description, description->NameOffset).value_or("");
  const auto checked = CheckAnimation(m_job, description, name);
  const Skeleton* skeleton = GetSkeleton(m_job);
  return !checked || skeleton == nullptr || !BeginsUnchanged(skeleton->Bones, *checked);
}

std::optional<Animations::Own> Animations::Write(int64_t number, std::string_view name) {
  const auto description = m_animations[number];
  const NamedAnimation animation{description, number,
                                 m_job.Model.NameOf(description, description->NameOffset).value_or(name)};
  if (!SpendForAnimationLines(m_job, name)) return std::nullopt;
  if (!HasFrames(m_job, animation)) {
    m_job.Lose("animations without frames");
    return std::nullopt;
  }
  if (m_job.Stopped() || GetAnimationSmdModel(m_job) == nullptr) return std::nullopt;
  const bool ownBase = animation.IsDelta() && !NeedDeltaBase(number);
  if (animation.IsDelta() && !ownBase && !m_job.DeltaWritten) {
    if (!WriteDeltaReference(m_job, m_job.Names.Take(DeltaStem, AnimationExtension))) return std::nullopt;
    m_job.Script().Text("$animation " + Quoted(m_job, AnimationSource(m_job.DeltaReference)) + " " +
                        Quoted(m_job, m_job.DeltaReference) + " fps 30" +
                        (HasAnimationBlocks(m_job) ? " noanimblock\n" : "\n"));
  }
  const std::string file = m_job.Names.Take(AnimationStem(animation.Name), AnimationExtension);
  if (!WriteAnimationFile(m_job, animation, file,
                          {animation.IsDelta(), false, true, TravelOf(m_job, description), true}) ||
      m_job.Animations.Exports[number].State != AnimationFiles::Outcome::Written) {
    m_job.Lose("animations that cannot be read or written");
    return std::nullopt;
  }
  return Own{file, Words(number, name, ownBase)};
}

std::string Animations::Words(int64_t number, std::string_view name, bool ownBase) {
  const auto animation = m_animations[number];
  std::string words = "  fps " + Number(m_job, animation->Fps) + "\n";
  if ((animation->Flags & AnimFlagLooping) != 0) words += "  loop\n";
  if (IsKeptOutOfBlocks(m_job, animation)) words += "  noanimblock\n";
  if ((animation->Flags & AnimFlagDelta) != 0) {
    const std::string_view base = ownBase ? name : AnimationSource(m_job.DeltaReference);
    words += "  subtract " + Quoted(m_job, base) + " 0\n";
  }
  if ((animation->Flags & ~(AnimFlagLooping | AnimFlagDelta)) != 0) {
    m_job.Lose("flags of animations without a statement");
  }
  m_job.Lose("local hierarchies of animations", animation->LocalHierarchyCount);
  CountLostOfStatic(number, name);
  return words + TravelWords(animation) + IkRuleWords(animation);
}

std::string Animations::TravelWords(const core::Record<StudioAnimDesc>& animation) {
  std::string words;
  if (animation->MovementCount == 0) return words;
  const auto parts = m_job.Model.View().Array<StudioMovement>(animation.Offset() + animation->MovementOffset,
                                                              animation->MovementCount);
  if (!parts) return words;
  for (const auto part : *parts) {
    std::string axes;
    uint32_t left = part->Flags;
    for (const AxisWord& axis : AxisWords) {
      if ((part->Flags & axis.Flag) == 0) continue;
      axes += " " + std::string(axis.Word);
      left &= ~axis.Flag;
    }
    if (left != 0 || axes.empty() || part->Angle != 0) m_job.Lose("turns of movements");
    if (!axes.empty()) words += "  walkframe " + std::to_string(part->LastFrame) + axes + "\n";
  }
  return words;
}

std::string Animations::IkRuleWords(const core::Record<StudioAnimDesc>& animation) {
  std::string words;
  const auto header = m_job.Model.Header();
  // A compile makes rules of its own for chains that have none.
  if (animation->IkRuleCount == 0) return header->IkChainCount > 0 ? "  noautoik\n" : words;
  const auto chains = m_job.Model.View().Array<StudioIkChain>(header->IkChainOffset, header->IkChainCount);
  const auto rules = IkRulesOf(m_job, animation);
  if (!rules || !chains || !m_job.Spend(rules->Count() * RecordCost)) {
    m_job.Lose("IK rules that cannot be read", animation->IkRuleCount);
    return words;
  }
  bool exact = true;
  std::set<int32_t> ruled;
  for (const auto rule : *rules) {
    const auto chain = ChainName(m_job, rule->Chain);
    if (!chain || (rule->Type != IkRuleTouch && rule->Type != IkRuleRelease)) {
      m_job.Lose("IK rules of an unknown kind");
      continue;
    }
    ruled.insert(+rule->Chain);
    words += "  ikrule " + Quoted(m_job, *chain);
    if (rule->Type == IkRuleTouch) {
      const auto bone =
          rule->Bone < 0 ? std::optional<std::string_view>("") : BoneName(m_job, "IK rule", rule.Offset(), rule->Bone);
      words += " touch " + Quoted(m_job, bone.value_or(""));
    } else {
      words += " release";
    }
    words += IkRuleValues(m_job, *rule);
    const float parts[] = {rule->Start, rule->Peak, rule->Tail, rule->End};
    const bool whole = parts[0] == 0 && parts[1] == 0 && parts[2] == 1 && parts[3] == 1;
    // One frame has no place for an end behind its start; without a range a rule holds all through.
    if (!whole || animation->FrameCount > 1) {
      words += " range";
      for (const float part : parts) words += " " + FrameAt(part, animation->FrameCount, exact);
    }
    if (rule->Contact != rule->Peak) {
      words += " contact " + FrameAt(rule->Contact, animation->FrameCount, exact);
    }
    words += "\n";
  }
  if (static_cast<int64_t>(ruled.size()) < chains->Count()) words += "  noautoik\n";
  if (!exact) m_job.Lose("IK rules whose times lie between frames");
  return words;
}

}  // namespace tarnwick::decompiler::sources
