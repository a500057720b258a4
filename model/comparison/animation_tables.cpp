#include <array>

#include "core/same_bytes.h"
#include "model/animation_check.h"
#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/pose_player.h"
#include "model/rotation_packing.h"

namespace tarnwick::model {

namespace {

constexpr RecordField AnimationFields[] = {
    {"frames per second", offsetof(StudioAnimDesc, Fps), 1, TextGrain},
    {"number of frames", offsetof(StudioAnimDesc, FrameCount)},
    {"frames of a section", offsetof(StudioAnimDesc, SectionFrames)},
};
constexpr RecordField MovementFields[] = {
    {"last frame of a movement", offsetof(StudioMovement, LastFrame)},
    {"axes of a movement", offsetof(StudioMovement, Flags)},
    {"speeds of a movement", offsetof(StudioMovement, StartSpeed), 2, 1e-3},
    {"angle of a movement", offsetof(StudioMovement, Angle), 1, 1e-3},
    {"direction of a movement", offsetof(StudioMovement, Direction), 3, 1e-3},
    {"end of a movement", offsetof(StudioMovement, Position), 3, 1e-3},
};
constexpr RecordField IkRuleFields[] = {
    {"type of an ik rule", offsetof(StudioIkRule, Type)},
    {"chain of an ik rule", offsetof(StudioIkRule, Chain)},
    {"slot of an ik rule", offsetof(StudioIkRule, Slot)},
    {"measures of an ik rule", offsetof(StudioIkRule, Height), 3, 1e-3},
    {"place of an ik rule", offsetof(StudioIkRule, Position), 3, 1e-3},
    {"range of an ik rule", offsetof(StudioIkRule, Start), 4, 1e-3},
    {"contact of an ik rule", offsetof(StudioIkRule, Contact), 1, 1e-3},
};

using AnimationRecord = core::Record<StudioAnimDesc>;

/// What a bone in a frame costs a reader.
constexpr int64_t PoseCost = 8;

/// How far two decoded values of a bone lie apart at most where they are one source's: a step of its tracks, or of the
/// packed forms.
struct PoseGrain {
  double Position;
  double Rotation;  // radians
};

PoseGrain GrainOf(const StudioBone& a, const StudioBone& b) {
  // A packed rotation has 15 bits for its coarsest part, a half-float ten.
  constexpr double PackedRotation = 2e-4;
  constexpr double Some = 1.01;  // a step, and what floats lose of it
  const auto largest = [](const Vec3& one, const Vec3& other) {
    return double{std::max({one.x, one.y, one.z, other.x, other.y, other.z})};
  };
  const double turn = largest(a.RotationScale, b.RotationScale);
  return {Some * largest(a.PositionScale, b.PositionScale), std::max(PackedRotation, Some * turn * std::sqrt(3.0))};
}

bool IsNumber(const Quat& q) {
  return !std::isnan(q.x + q.y + q.z + q.w);
}

/// Whether the parts of two rotations that a packed form stores are neighbours. Where the fourth, which follows from
/// them, is next to nothing, a step of one of them turns it by much more than it is large itself.
bool HasNextParts(const Quat& a, const Quat& b) {
  constexpr double Steps = 3e-6, NextToNothing = 0.004;
  if (!(std::abs(double{a.w}) < NextToNothing) || !(std::abs(double{b.w}) < NextToNothing)) return false;
  const double sign = double{a.x} * b.x + double{a.y} * b.y + double{a.z} * b.z < 0 ? -1 : 1;
  return std::abs(a.x - sign * b.x) <= Steps && std::abs(a.y - sign * b.y) <= Steps &&
         std::abs(a.z - sign * b.z) <= Steps;
}

class FrameComparison {
 public:
  FrameComparison(const ComparedModels& models, const Skeleton& first, const Skeleton& second)
      : m_models(models), m_first(first), m_second(second), m_count(std::min(first.Count(), second.Count())) {}

  void Compare(const AnimationRecord& first, const AnimationRecord& second, const std::string& name) {
    const int32_t frames = std::min(+first->FrameCount, +second->FrameCount);
    if (frames <= 0) return;
    if (!m_models.First.Spend(int64_t{frames} * m_count * PoseCost)) return;
    const auto a = CheckAnimation(m_models.First, first, name);
    const auto b = CheckAnimation(m_models.Second, second, name);
    if (!a || !b) return;
    PosePlayer one(m_first.Bones, *a);
    PosePlayer other(m_second.Bones, *b);
    for (int32_t frame = 0; frame < frames; ++frame) {
      const bool oneMoved = one.GoTo(frame);
      const bool otherMoved = other.GoTo(frame);
      if (!oneMoved && !otherMoved) continue;
      for (int64_t bone = 0; bone < m_count; ++bone) CompareBone(one, other, bone, frame, name);
    }
  }

 private:
  void CompareBone(const PosePlayer& one, const PosePlayer& other, int64_t bone, int32_t frame,
                   const std::string& name) {
    const auto number = static_cast<size_t>(bone);
    const Vec3& a = one.Positions()[number];
    const Vec3& b = other.Positions()[number];
    const Quat& p = one.Rotations()[number];
    const Quat& q = other.Rotations()[number];
    const bool moved = !core::HasSameBytes(a, b);
    const bool turned = !core::HasSameBytes(p, q);
    if (!moved && !turned) return;
    const auto where = [&] {
      return "animation " + name + ", frame " + std::to_string(frame) + ", " +
             Place("bone", m_first.Names[number], bone);
    };
    const PoseGrain grain = GrainOf(*m_first.Bones[bone], *m_second.Bones[bone]);
    if (moved) {
      // A half-float's step grows with the value.
      double largest = 0;
      bool isRounding = true;
      for (const auto& [x, y] : {std::pair<float, float>{+a.x, +b.x}, {+a.y, +b.y}, {+a.z, +b.z}}) {
        const double amount = std::abs(double{x} - double{y});
        isRounding = isRounding && amount <= std::max(grain.Position, 0.001 * std::max(1.0, std::abs(double{x})));
        largest = std::max(largest, std::isfinite(amount) ? amount : 0);
      }
      m_models.Differences.Add(ModelTable::Frames, "position", where(),
                               DifferenceList::NumberText(std::array<float, 3>{a.x, a.y, a.z}),
                               DifferenceList::NumberText(std::array<float, 3>{b.x, b.y, b.z}), largest, isRounding);
    }
    if (turned) {
      const double angle = AngleBetween(p, q);
      if (angle == 0 || (!IsNumber(p) && !IsNumber(q))) return;
      m_models.Differences.Add(ModelTable::Frames, "rotation", where(),
                               DifferenceList::NumberText(std::array{p.x, p.y, p.z, p.w}),
                               DifferenceList::NumberText(std::array{q.x, q.y, q.z, q.w}), angle,
                               angle <= grain.Rotation || HasNextParts(p, q));
    }
  }

  const ComparedModels& m_models;
  const Skeleton& m_first;
  const Skeleton& m_second;
  const int64_t m_count;
};

/// The rotation that a rule holds; all zeros stand for none, as the rotation by nothing does.
std::array<float, 4> RotationOf(const StudioIkRule& rule) {
  const Quat turn = rule.Rotation;
  if (turn.x == 0 && turn.y == 0 && turn.z == 0) return {0, 0, 0, 1};
  return {turn.x, turn.y, turn.z, turn.w};
}

template <typename Where>
void CompareIkRule(DifferenceList& differences, const StudioIkRule& first, const StudioIkRule& second,
                   const Where& where) {
  CompareFields(differences, ModelTable::Animations, IkRuleFields, first, second, where);
  differences.Numbers(ModelTable::Animations, "rotation of an ik rule", where, RotationOf(first), RotationOf(second),
                      1e-3);
  // Only what touches has something that it touches.
  if (first.Type != IkRuleTouch && second.Type != IkRuleTouch) return;
  differences.Whole(ModelTable::Animations, "bone of an ik rule", where, first.Bone, second.Bone);
}

/// The rules of two animations that have as many.
template <typename Where>
void CompareIkRules(const ComparedModels& models, const AnimationRecord& first, const AnimationRecord& second,
                    const Where& where) {
  const auto one = IkRulesOf(models.First, first);
  const auto other = IkRulesOf(models.Second, second);
  if (!one || !other || !models.First.Spend(one->Count() * RecordCost)) return;
  for (int64_t i = 0; i < one->Count(); ++i) CompareIkRule(models.Differences, *(*one)[i], *(*other)[i], where);
}

/// Whether the data of an animation begin in the block file, and whether any of them stand there.
template <typename Where>
void CompareStorage(const ComparedModels& models, const AnimationRecord& first, const AnimationRecord& second,
                    const Where& where) {
  const auto one = StoredPieces(models.First, first);
  const auto other = StoredPieces(models.Second, second);
  if (one.empty() || other.empty()) return;
  const auto isInBlocks = [](const StudioAnimSection& piece) { return piece.Block > 0; };
  models.Differences.Whole(ModelTable::Animations, "start in the block file", where, isInBlocks(one.front()) ? 1 : 0,
                           isInBlocks(other.front()) ? 1 : 0);
  models.Differences.Whole(ModelTable::Animations, "part in the block file", where,
                           std::ranges::any_of(one, isInBlocks) ? 1 : 0,
                           std::ranges::any_of(other, isInBlocks) ? 1 : 0);
}

}  // namespace

void CompareAnimations(const ComparedModels& models) {
  const Skeleton* first = GetSkeleton(models.First);
  const Skeleton* second = GetSkeleton(models.Second);
  const auto a = models.First.Model.Header();
  const auto b = models.Second.Model.Header();
  const bool haveBlocks = a->AnimBlockCount > 1 || b->AnimBlockCount > 1;
  CompareTables<StudioAnimDesc>(
      models, ModelTable::Animations, "animations", {a->AnimOffset, a->AnimCount}, {b->AnimOffset, b->AnimCount},
      [&](const AnimationRecord& one, const AnimationRecord& other, int64_t i) {
        if (models.IsStopped()) return;
        const std::string_view name = TextOf(models.First, one, one->NameOffset);
        const auto where = [&] { return Place("animation", name, i); };
        models.Differences.Text(ModelTable::Animations, "name", where, name,
                                TextOf(models.Second, other, other->NameOffset));
        CompareFields(models.Differences, ModelTable::Animations, AnimationFields, *one, *other, where);
        models.Differences.Flags(ModelTable::Animations, "flags", where, one->Flags, other->Flags,
                                 AnimFlagLooping | AnimFlagDelta);
        models.Differences.Whole(ModelTable::Animations, "number of ik rules", where, one->IkRuleCount,
                                 other->IkRuleCount);
        CompareTables<StudioMovement>(
            models, ModelTable::Animations, "movements", where,
            {one.Offset() + one->MovementOffset, one->MovementCount},
            {other.Offset() + other->MovementOffset, other->MovementCount}, [&](const auto& x, const auto& y, int64_t) {
              CompareFields(models.Differences, ModelTable::Animations, MovementFields, *x, *y, where);
            });
        if (haveBlocks) CompareStorage(models, one, other, where);
        if (one->IkRuleCount > 0 && one->IkRuleCount == other->IkRuleCount) CompareIkRules(models, one, other, where);
        if (first != nullptr && second != nullptr) {
          FrameComparison(models, *first, *second).Compare(one, other, std::string(name));
        }
      });
}

}  // namespace tarnwick::model
