// What the words of an animation do to its frames, each on its own.

#include "compiler/animation/animation_words.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "compiler/animation/pose_math.h"
#include "compiler/skeleton/euler.h"
#include "core/paths.h"

namespace tarnwick::compiler {

using model::RigidTransform;
using qc::Key;
using qc::Option;

namespace {

constexpr int32_t MostFrames = 1 << 20;
constexpr double Degree = std::numbers::pi / 180;

int32_t FrameOf(const Option& word, size_t i, int32_t missing = 0) {
  const double value = word.Number(i, missing);
  return std::isfinite(value) ? static_cast<int32_t>(std::clamp(value, -1e9, 1e9)) : missing;
}

class Worker {
 public:
  Worker(CompileContext& context, const ModelBones& bones, const Option& word, BuiltAnimation& animation)
      : m_context(context), m_skeleton(bones), m_bones(bones.Bones.size()), m_word(word), m_animation(animation) {}

  void Cut(int32_t first, int32_t last) {
    const int32_t end = m_animation.FrameCount - 1;
    if (first < 0 || last < first || last > end) {
      m_context.Warning(m_word.At, "the source has the frames 0 to " + std::to_string(end));
    }
    first = std::clamp(first, 0, end);
    last = std::clamp(last, first, end);
    auto& poses = m_animation.Poses;
    poses.erase(poses.begin() + static_cast<ptrdiff_t>(m_bones) * (last + 1), poses.end());
    poses.erase(poses.begin(), poses.begin() + static_cast<ptrdiff_t>(m_bones) * first);
    m_animation.FrameCount = last - first + 1;
  }
  /// As many frames as asked for: what is too much goes, what lacks is the last frame held.
  void Count(int32_t frames) {
    if (frames < 1 || frames > MostFrames) {
      return m_context.Error(m_word.At, "an animation has 1 to " + std::to_string(MostFrames) + " frames",
                             core::TroubleKind::Limit);
    }
    if (!m_context.Spend(int64_t{frames} * static_cast<int64_t>(m_bones * sizeof(BonePose)), m_word.At)) return;
    const std::vector<BonePose> last(m_animation.Poses.end() - static_cast<ptrdiff_t>(m_bones),
                                     m_animation.Poses.end());
    m_animation.Poses.resize(static_cast<size_t>(frames) * m_bones);
    for (int32_t frame = m_animation.FrameCount; frame < frames; ++frame) {
      std::copy(last.begin(), last.end(), &m_animation.Pose(frame, 0, m_bones));
    }
    m_animation.FrameCount = frames;
  }
  void Reverse() {
    for (int32_t a = 0, b = m_animation.FrameCount - 1; a < b; ++a, --b) {
      std::swap_ranges(Frame(a), Frame(a) + m_bones, Frame(b));
    }
  }
  void ScalePlaces(float factor) {
    for (BonePose& pose : m_animation.Poses) {
      for (float& axis : pose.Position) axis *= factor;
    }
  }
  void MoveRoots(const std::array<float, 3>& by) {
    ForRoots([&](BonePose& pose) {
      for (size_t axis = 0; axis < 3; ++axis) pose.Position[axis] += by[axis];
    });
  }
  void TurnRoots(const model::EulerAngles& angles) {
    if (angles.x == 0 && angles.y == 0) {
      const double c = std::cos(double{angles.z}), s = std::sin(double{angles.z});
      ForRoots([&](BonePose& pose) {
        const double x = pose.Position[0], y = pose.Position[1];
        pose.Position[0] = static_cast<float>(x * c - y * s);
        pose.Position[1] = static_cast<float>(x * s + y * c);
        pose.Angles[2] += angles.z;
      });
      return;
    }
    const RigidTransform turn = RigidTransform::Of(angles, model::Vec3{0, 0, 0});
    ForRoots([&](BonePose& pose) { pose = PoseOf(turn * TransformOf(pose)); });
  }
  void StartLoopAt(int32_t frame) {
    const int32_t round = m_animation.FrameCount - 1;
    if (round < 1) return;
    const int32_t shift = ((frame % round) + round) % round;
    std::rotate(Frame(0), Frame(shift), Frame(round));
    std::copy(Frame(0), Frame(0) + m_bones, Frame(round));
  }
  /// Spreads what the last frame differs from the first over the frames before the end and behind the start.
  void FixupLoop(int32_t before, int32_t after) {
    const int32_t last = m_animation.FrameCount - 1;
    before = std::clamp(-before, 0, last);
    after = std::clamp(after, 0, last);
    if (last < 1 || before + after == 0) return;
    const float span = static_cast<float>(before + after);
    const std::vector<BonePose> first(Frame(0), Frame(0) + m_bones), end(Frame(last), Frame(last) + m_bones);
    for (int32_t frame = 0; frame <= last; ++frame) {
      float share = 0;
      if (frame < after) share = static_cast<float>(after - frame) / span;
      if (last - frame < before) share -= static_cast<float>(before - (last - frame)) / span;
      if (share == 0) continue;
      for (size_t bone = 0; bone < m_bones; ++bone) Blend(Frame(frame)[bone], first[bone], end[bone], share);
    }
  }
  void AppendFirst() {
    if (!m_context.Spend(static_cast<int64_t>(m_bones * sizeof(BonePose)), m_word.At)) return;
    const std::vector<BonePose> first(Frame(0), Frame(0) + m_bones);
    m_animation.Poses.insert(m_animation.Poses.end(), first.begin(), first.end());
    ++m_animation.FrameCount;
  }
  void Align(const BuiltAnimation& other, const std::vector<std::string_view>& axes, int32_t theirs, int32_t mine) {
    const BonePose& to = other.Pose(std::clamp(theirs, 0, other.FrameCount - 1), 0, m_bones);
    const BonePose from = m_animation.Pose(std::clamp(mine, 0, m_animation.FrameCount - 1), 0, m_bones);
    std::array<float, 3> move = {0, 0, 0};
    std::array<float, 3> angles = from.Angles;
    for (const std::string_view axis : axes) {
      for (size_t i = 0; i < 3; ++i) {
        const std::string name(1, static_cast<char>('x' + i));
        if (core::EqualIgnoringCase(axis, name)) move[i] = to.Position[i] - from.Position[i];
        if (core::EqualIgnoringCase(axis, name + "r")) angles[i] = to.Angles[i];
      }
    }
    if (angles[0] == from.Angles[0] && angles[1] == from.Angles[1]) {
      if (angles[2] != from.Angles[2]) TurnRoots({0, 0, angles[2] - from.Angles[2]});
    } else {
      const auto turnOf = [](const std::array<float, 3>& a) {
        return RigidTransform::Of(model::EulerAngles{a[0], a[1], a[2]}, model::Vec3{0, 0, 0});
      };
      const RigidTransform turn = turnOf(angles) * turnOf(from.Angles).Inverse();
      ForRoots([&](BonePose& pose) { pose = PoseOf(turn * TransformOf(pose)); });
    }
    MoveRoots(move);
  }
  void TurnTravelTo(float degrees) {
    const BonePose &first = *Frame(0), &last = *Frame(m_animation.FrameCount - 1);
    const double x = double{last.Position[0]} - double{first.Position[0]};
    const double y = double{last.Position[1]} - double{first.Position[1]};
    if (x == 0 && y == 0) return;
    TurnRoots({0, 0, static_cast<float>(double{degrees} * Degree - std::atan2(y, x))});
  }
  void Subtract(const BuiltAnimation& base, int32_t frame) {
    if (frame < 0 || frame >= base.FrameCount) {
      m_context.Warning(m_word.At, "the base has the frames 0 to " + std::to_string(base.FrameCount - 1));
    }
    const BonePose* at = &base.Pose(std::clamp(frame, 0, base.FrameCount - 1), 0, m_bones);
    const std::vector<BonePose> reference(at, at + m_bones);  // the base may be the animation itself
    for (size_t bone = 0; bone < m_bones; ++bone) {
      const RigidTransform inverse = TransformOf(reference[bone]).Inverse();
      for (int32_t f = 0; f < m_animation.FrameCount; ++f) Difference(inverse, reference[bone], Frame(f)[bone]);
    }
    m_animation.Delta = true;
  }
  /// Takes away a blend from the first frame to the last.
  void SubtractBlend(bool eased) {
    const int32_t last = m_animation.FrameCount - 1;
    const std::vector<BonePose> first(Frame(0), Frame(0) + m_bones), end(Frame(last), Frame(last) + m_bones);
    for (int32_t f = 0; f <= last; ++f) {
      float t = last == 0 ? 0 : static_cast<float>(f) / static_cast<float>(last);
      if (eased) t = t * t * (3 - 2 * t);
      for (size_t bone = 0; bone < m_bones; ++bone) {
        BonePose base = first[bone];
        Blend(base, end[bone], first[bone], t);
        Difference(TransformOf(base).Inverse(), base, Frame(f)[bone]);
      }
    }
    m_animation.Delta = true;
  }

 private:
  BonePose* Frame(int32_t frame) { return m_animation.Poses.data() + static_cast<size_t>(frame) * m_bones; }
  template <typename Change>
  void ForRoots(Change change) {
    for (size_t bone = 0; bone < m_bones; ++bone) {
      if (m_skeleton.Bones[bone].Parent >= 0) continue;
      for (int32_t frame = 0; frame < m_animation.FrameCount; ++frame) change(Frame(frame)[bone]);
    }
  }
  /// Adds `share` of the way from `from` to `to`.
  static void Blend(BonePose& pose, const BonePose& to, const BonePose& from, float share) {
    const BonePose near = Nearest(to, from);
    for (size_t axis = 0; axis < 3; ++axis) {
      pose.Position[axis] += share * (to.Position[axis] - from.Position[axis]);
      pose.Angles[axis] += share * (near.Angles[axis] - from.Angles[axis]);
    }
  }
  /// A pose that equals the base keeps no change at all.
  static void Difference(const RigidTransform& inverse, const BonePose& base, BonePose& pose) {
    if (base.Position == pose.Position && base.Angles == pose.Angles) {
      pose = {};
      return;
    }
    const bool turned = base.Angles != pose.Angles;
    pose = PoseOf(inverse * TransformOf(pose));
    if (!turned) pose.Angles = {0, 0, 0};
  }

  CompileContext& m_context;
  const ModelBones& m_skeleton;
  size_t m_bones;
  const Option& m_word;
  BuiltAnimation& m_animation;
};

}  // namespace

bool ApplyAnimationWord(CompileContext& context, const ModelBones& bones, const Option& word, BuiltAnimation& animation,
                        std::string_view ownName, const FindAnimation& find) {
  Worker worker(context, bones, word, animation);
  const std::string_view name = word.Arguments.empty() ? std::string_view() : word.Arguments[0].Text;
  const auto other = [&]() -> const BuiltAnimation* {
    if (core::EqualIgnoringCase(name, ownName)) return &animation;
    const BuiltAnimation* found = find(name);
    if (found == nullptr) context.Warning(word.At, "no animation above is called " + qc::Shown(name));
    return found;
  };
  switch (word.Kind) {
    case Key::Fps:
      animation.Fps = static_cast<float>(word.Number(0));
      if (!(animation.Fps > 0)) {
        context.Warning(word.At, "an animation of " + std::string(name) + " frames a second stands still");
      }
      return true;
    case Key::Loop:
      animation.Loops = true;
      return true;
    case Key::Frames:
      if (!bones.Static) worker.Cut(FrameOf(word, 0), FrameOf(word, 1));
      return true;
    case Key::NumFrames:
      worker.Count(FrameOf(word, 0));
      return true;
    case Key::Origin:
      if (!bones.Static) {
        worker.MoveRoots({static_cast<float>(word.Number(0)), static_cast<float>(word.Number(1)),
                          static_cast<float>(word.Number(2))});
      }
      return true;
    case Key::Rotate:
    case Key::Angles: {
      const auto angle = [&](size_t i) { return static_cast<float>(word.Number(i) * Degree); };
      if (!bones.Static) {
        worker.TurnRoots(word.Arguments.size() >= 3 ? model::EulerAngles{angle(0), angle(1), angle(2)}
                                                    : model::EulerAngles{0, 0, angle(0)});
      }
      return true;
    }
    case Key::Scale:
      if (word.Number(0) != 0) worker.ScalePlaces(static_cast<float>(word.Number(0)));
      return true;
    case Key::Reverse:
      worker.Reverse();
      return true;
    case Key::StartLoop:
      worker.StartLoopAt(FrameOf(word, 0));
      return true;
    case Key::FixupLoop:
      worker.FixupLoop(FrameOf(word, 0), FrameOf(word, 1));
      return true;
    case Key::FudgeLoop:
      worker.AppendFirst();
      return true;
    case Key::NoAnimation: {
      const int32_t frames = animation.FrameCount;
      TakeRestPose(bones, animation);
      worker.Count(frames);
      return true;
    }
    case Key::AlignTo:
      if (const BuiltAnimation* base = other()) worker.Align(*base, {"X", "Y"}, 0, 0);
      return true;
    case Key::Align:
      if (const BuiltAnimation* base = other()) {
        std::vector<std::string_view> axes;
        const size_t count = word.Arguments.size();
        for (size_t i = 1; i + 2 < count; ++i) axes.push_back(word.Arguments[i].Text);
        worker.Align(*base, axes, FrameOf(word, count - 2), FrameOf(word, count - 1));
      }
      return true;
    case Key::RotateTo:
      worker.TurnTravelTo(static_cast<float>(word.Number(0)));
      return true;
    case Key::Subtract:
    case Key::PreSubtract:
      if (const BuiltAnimation* base = other()) worker.Subtract(*base, FrameOf(word, 1));
      animation.Delta = true;
      return true;
    case Key::LinearDelta:
    case Key::SplineDelta:
      worker.SubtractBlend(word.Kind == Key::SplineDelta);
      return true;
    case Key::CounterRotate:
    case Key::CounterRotateTo:
    case Key::AutoIk:
    case Key::IkFixup:
      context.Warning(word.At, qc::Shown(word.Name) + " is known, but nothing is built from it",
                      core::TroubleKind::Lost);
      return true;
    case Key::NoAnimBlock:
    case Key::NoAnimBlockStall:
      animation.InModelFile = true;
      return true;
    case Key::NoAutoIk:  // rules are made of `ikrule` alone
    case Key::AlignBoneTo:
    case Key::Match:
    case Key::MatchBlend:
    case Key::WalkAlign:
    case Key::WalkAlignTo:
    case Key::WorldSpaceBlend:
    case Key::WorldSpaceBlendLoop:
    case Key::Derivative:
    case Key::Compress:
    case Key::MotionRollback:  // those that are not built were told when the script was read
    case Key::IkRule:
    case Key::Extract:
    case Key::WalkFrame:
      return true;
    default:
      return false;
  }
}

}  // namespace tarnwick::compiler
