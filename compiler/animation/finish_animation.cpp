// What comes last with an animation: travel, loops, rules of inverse kinematics.

#include <algorithm>
#include <cmath>

#include "compiler/animation/animation_words.h"
#include "compiler/animation/pose_math.h"
#include "core/paths.h"

namespace tarnwick::compiler {

using model::RigidTransform;
using qc::Key;
using qc::Option;

namespace {

struct AxisWord {
  std::string_view Word;
  uint32_t Flag;
  size_t Axis;
};
constexpr AxisWord AxisWords[] = {{"X", model::MovementFlagX, 0},        {"Y", model::MovementFlagY, 1},
                                  {"Z", model::MovementFlagZ, 2},        {"LX", model::MovementFlagLinearX, 0},
                                  {"LY", model::MovementFlagLinearY, 1}, {"LZ", model::MovementFlagLinearZ, 2}};
constexpr size_t MostWalkFrames = 64;

class Travel {
 public:
  Travel(CompileContext& context, const ModelBones& bones, BuiltAnimation& animation)
      : m_context(context), m_bones(bones), m_animation(animation) {}

  void TakeOut(const std::vector<const Option*>& words) {
    uint32_t whole = 0;
    const Option* last = nullptr;
    for (const Option* word : words) {
      if (word->Kind == Key::WalkFrame) {
        uint32_t axes = 0;
        for (size_t i = 1; i < word->Arguments.size(); ++i) axes |= AxisOf(word->Arguments[i].Text, *word);
        Part(static_cast<int32_t>(std::clamp(word->Number(0), 0.0, 1e9)), axes, *word);
      } else if (word->Kind == Key::Extract) {
        whole |= AxisOf(word->Name, *word);
        last = word;
      }
    }
    if (whole != 0) Part(m_animation.FrameCount - 1, whole, *last);
    Apply();
  }

 private:
  uint32_t AxisOf(std::string_view name, const Option& word) {
    const auto* axis =
        std::ranges::find_if(AxisWords, [&](const AxisWord& a) { return core::EqualIgnoringCase(a.Word, name); });
    if (axis != std::end(AxisWords)) return axis->Flag;
    m_context.Warning(word.At, "travel along " + qc::Shown(name) + " is not built", core::TroubleKind::Lost);
    return 0;
  }
  void Part(int32_t last, uint32_t flags, const Option& word) {
    const int32_t first = m_animation.Movements.empty() ? 0 : m_animation.Movements.back().LastFrame;
    if (last >= m_animation.FrameCount) last = m_animation.FrameCount - 1;
    if (flags == 0 || last <= first) return;
    if (m_animation.Movements.size() == MostWalkFrames) {
      return m_context.Error(word.At, "more than 64 parts of a walk", core::TroubleKind::Limit);
    }
    model::StudioMovement part = {};
    part.LastFrame = last;
    part.Flags = flags;
    std::array<float, 3> reached = m_reached;
    for (const AxisWord& axis : AxisWords) {
      if ((flags & axis.Flag) != 0) reached[axis.Axis] = Root(last)[axis.Axis] - Root(0)[axis.Axis];
    }
    const double x = reached[0] - m_reached[0], y = reached[1] - m_reached[1], z = reached[2] - m_reached[2];
    const double length = std::sqrt(x * x + y * y + z * z);
    part.StartSpeed = part.EndSpeed = static_cast<float>(length);
    if (length > 0) {
      part.Direction = {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
    }
    part.Position = {reached[0], reached[1], reached[2]};
    m_reached = reached;
    m_animation.Movements.push_back(part);
  }
  const std::array<float, 3>& Root(int32_t frame) const {
    return m_animation.Pose(frame, 0, m_bones.Bones.size()).Position;
  }
  /// What the movements hold goes out of the roots' tracks; behind the last part the model has travelled all.
  void Apply() {
    std::array<float, 3> from = {0, 0, 0};
    int32_t first = 0;
    size_t part = 0;
    const auto& parts = m_animation.Movements;
    if (parts.empty()) return;
    for (int32_t frame = 0; frame < m_animation.FrameCount; ++frame) {
      while (part < parts.size() && frame >= parts[part].LastFrame) {
        from = {parts[part].Position.x, parts[part].Position.y, parts[part].Position.z};
        first = parts[part].LastFrame;
        ++part;
      }
      std::array<float, 3> travelled = from;
      if (part < parts.size()) {
        const float t = static_cast<float>(frame - first) / static_cast<float>(parts[part].LastFrame - first);
        const std::array<float, 3> to = {parts[part].Position.x, parts[part].Position.y, parts[part].Position.z};
        for (size_t axis = 0; axis < 3; ++axis) travelled[axis] = from[axis] + (to[axis] - from[axis]) * t;
      }
      for (size_t bone = 0; bone < m_bones.Bones.size(); ++bone) {
        if (m_bones.Bones[bone].Parent >= 0) continue;
        BonePose& pose = m_animation.Pose(frame, bone, m_bones.Bones.size());
        for (size_t axis = 0; axis < 3; ++axis) pose.Position[axis] -= travelled[axis];
      }
    }
  }

  CompileContext& m_context;
  const ModelBones& m_bones;
  BuiltAnimation& m_animation;
  std::array<float, 3> m_reached = {0, 0, 0};
};

class IkRules {
 public:
  IkRules(CompileContext& context, const ModelBones& bones, BuiltAnimation& animation)
      : m_context(context), m_bones(bones), m_animation(animation) {}

  void Add(const Option& word) {
    if (word.Arguments.empty()) return;
    const auto& chains = m_context.Plan.IkChains;
    const auto chain = std::ranges::find_if(
        chains, [&](const PlanIkChain& c) { return core::EqualIgnoringCase(c.Name, word.Arguments[0].Text); });
    if (chain == chains.end()) {
      qc::NearName near(word.Arguments[0].Text);
      for (const PlanIkChain& known : chains) near.Offer(known.Name);
      return m_context.Warning(
          word.At, "no $ikchain is called " + qc::Shown(word.Arguments[0].Text) + qc::DidYouMean(near.Best()));
    }
    BuiltIkRule rule;
    model::StudioIkRule& record = rule.Record;
    record.Number = static_cast<int32_t>(m_animation.IkRules.size());
    record.Chain = record.Slot = static_cast<int32_t>(chain - chains.begin());
    record.Bone = -1;
    record.Tail = record.End = 1;
    std::optional<float> contact;
    bool isOfAKind = false;
    for (const Option& option : word.Options) {
      isOfAKind = isOfAKind || IsKind(option.Kind);
      switch (option.Kind) {
        case Key::Touch:
          record.Type = model::IkRuleTouch;
          TakeTouched(option, record);
          break;
        case Key::Release:
          record.Type = model::IkRuleRelease;
          record.Bone = 0;  // only what is touched can be no bone
          break;
        case Key::Range:
          TakeRange(option, record);
          break;
        case Key::Contact:
          contact = PartOf(option.Number(0));
          break;
        case Key::Height:
          record.Height = static_cast<float>(option.Number(0));
          break;
        case Key::Floor:
          record.Floor = static_cast<float>(option.Number(0));
          break;
        case Key::Radius:
        case Key::Pad:
          record.Radius = static_cast<float>(option.Number(0));
          break;
        case Key::UseSource:
          break;
        default:
          m_context.Warning(option.At, qc::Shown(option.Name) + " is known, but nothing is built from it",
                            core::TroubleKind::Lost);
      }
    }
    if (!isOfAKind) {
      m_context.Warning(word.At, "the ikrule of " + qc::Shown(word.Arguments[0].Text) +
                                     " has no kind, such as touch or release; it is left out");
    }
    if (record.Type == 0) return;  // of a kind that was told
    record.Contact = contact.value_or(record.Peak);
    if (record.Type == model::IkRuleTouch && !m_animation.Delta && !m_bones.Static) {
      Errors(rule, chain->Bone, word);
      record.Rotation.w = 1;
    }
    m_animation.IkRules.push_back(std::move(rule));
  }

 private:
  static bool IsKind(Key word) {
    constexpr Key Kinds[] = {Key::Touch,   Key::Footstep,  Key::Attachment, Key::Release,
                             Key::Unlatch, Key::AutoSteal, Key::AutoRelease};
    return std::ranges::find(Kinds, word) != std::end(Kinds);
  }
  /// The bone that is touched; an empty name is the model's origin.
  void TakeTouched(const Option& option, model::StudioIkRule& record) {
    if (option.Arguments.empty() || option.Arguments[0].Text.empty()) return;
    record.Bone = m_bones.Find(option.Arguments[0].Text);
    if (record.Bone >= 0) return;
    qc::NearName near(option.Arguments[0].Text);
    for (const ModelBone& bone : m_bones.Bones) near.Offer(bone.Name);
    m_context.Warning(option.At, "no bone is called " + qc::Shown(option.Arguments[0].Text) +
                                     "; the rule holds the place in the model" + qc::DidYouMean(near.Best()));
  }
  float PartOf(double frame) const {
    if (m_animation.FrameCount <= 1) return 0;
    return static_cast<float>(frame) / static_cast<float>(m_animation.FrameCount - 1);
  }
  void TakeRange(const Option& option, model::StudioIkRule& record) const {
    if (m_animation.FrameCount <= 1) return;
    const auto part = [&](size_t i, float open) {
      const double frame = option.Number(i);
      return std::isnan(frame) ? open : PartOf(frame);
    };
    record.Start = part(0, 0);
    record.Peak = part(1, record.Start);
    record.End = part(3, 1);
    record.Tail = part(2, record.End);
  }
  RigidTransform WorldOf(int32_t bone, int32_t frame) const {
    RigidTransform world;
    for (; bone >= 0; bone = m_bones.Bones[static_cast<size_t>(bone)].Parent) {
      world = TransformOf(m_animation.Pose(frame, static_cast<size_t>(bone), m_bones.Bones.size())) * world;
    }
    return world;
  }
  /// Where the limb's end stands in the space of what it touches, frame by frame.
  void Errors(BuiltIkRule& rule, const std::string& endName, const Option& word) {
    const int32_t end = m_bones.Find(endName);
    const auto last = static_cast<double>(m_animation.FrameCount - 1);
    const double frames = std::round((double{rule.Record.End} - double{rule.Record.Start}) * last) + 1;
    if (end < 0 || !(frames >= 1) || !(frames <= last + 1)) return;
    const auto count = static_cast<int32_t>(frames);
    const int64_t cost = int64_t{count} * static_cast<int64_t>(sizeof(std::array<float, 6>));
    if (!m_context.Spend(cost, word.At)) return;
    const auto first = static_cast<int32_t>(std::round(std::clamp(double{rule.Record.Start}, 0.0, 1.0) * last));
    BonePose before;
    for (int32_t i = 0; i < count; ++i) {
      const int32_t frame = std::min(first + i, m_animation.FrameCount - 1);
      RigidTransform place = WorldOf(end, frame);
      if (rule.Record.Bone >= 0) place = WorldOf(rule.Record.Bone, frame).Inverse() * place;
      const BonePose pose = Nearest(PoseOf(place), before);
      rule.Errors.push_back(
          {pose.Position[0], pose.Position[1], pose.Position[2], pose.Angles[0], pose.Angles[1], pose.Angles[2]});
      before = pose;
    }
  }

  CompileContext& m_context;
  const ModelBones& m_bones;
  BuiltAnimation& m_animation;
};

}  // namespace

void FinishAnimation(CompileContext& context, const ModelBones& bones, const std::vector<const Option*>& words,
                     BuiltAnimation& animation) {
  if (!bones.Static) Travel(context, bones, animation).TakeOut(words);
  // What a model holds has gone through this already, and a packed last frame is not quite the first one.
  if (animation.Loops && animation.FrameCount > 1 && !context.Options.KeepValues) {
    const size_t count = bones.Bones.size();
    std::copy_n(animation.Poses.begin(), count, animation.Poses.end() - static_cast<ptrdiff_t>(count));
  }
  IkRules rules(context, bones, animation);
  for (const Option* word : words) {
    if (word->Kind == Key::IkRule) rules.Add(*word);
  }
}

}  // namespace tarnwick::compiler
