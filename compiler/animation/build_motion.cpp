// Animations in the order of their statements, then sequences with what they name.

#include "compiler/animation/build_motion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "compiler/animation/animation_words.h"
#include "compiler/animation/sequence_words.h"
#include "core/paths.h"

namespace tarnwick::compiler {

using qc::Command;
using qc::Key;
using qc::Option;

namespace {

constexpr size_t MostAnimations = 32767;  // a blend table holds their numbers in 16 bits
constexpr int MostListLevels = 16;

class MotionBuilder {
 public:
  MotionBuilder(CompileContext& context, const ModelBones& bones, BuiltMotion& motion)
      : m_context(context), m_plan(context.Plan), m_bones(bones), m_motion(motion) {}

  bool Run() {
    for (const PlanPoseParameter& pose : m_plan.PoseParameters) {
      m_motion.PoseParameters.push_back({pose.Name, pose.Start, pose.End, pose.Wrap, pose.Loops});
    }
    GatherMore();
    for (size_t i = 0; i < m_plan.Motions.size(); ++i) {
      const Command kind = m_plan.Motions[i].Words->Kind;
      if (kind == Command::DeclareSequence) Declare(*m_plan.Motions[i].Words);
      if (kind == Command::Animation) Animate(i);
      if (kind == Command::Sequence) Sequence(i);
      if (m_motion.Animations.size() > MostAnimations || m_motion.Sequences.size() > MostAnimations) {
        m_context.Error(m_plan.Motions[i].Words->At, "a model holds at most 32767 animations and sequences",
                        core::TroubleKind::Limit);
        return false;
      }
    }
    for (const auto& [words, number, more] : m_pending) {
      ApplySequenceWords(m_context, m_bones, words, m_motion, number, more);
    }
    BuildNodeTable(m_context, m_motion);
    DropBases();
    return true;
  }

 private:
  using Words = std::vector<const Option*>;

  static std::string NameOf(const qc::Statement& s) {
    return s.Arguments.empty() ? std::string() : std::string(s.Arguments[0].Text);
  }

  /// Words of $continue, $append and $prepend by the name that they are for, and those of the lists.
  void GatherMore() {
    for (const CompilePlan::Motion& motion : m_plan.Motions) {
      const qc::Statement& s = *motion.Words;
      const std::string name = core::LowerAscii(NameOf(s));
      if (s.Kind == Command::Continue || s.Kind == Command::Append) {
        for (const Option& option : s.Options) m_append[name].push_back(&option);
      } else if (s.Kind == Command::Prepend) {
        for (const Option& option : s.Options) m_prepend[name].push_back(&option);
      } else if (s.Kind == Command::CmdList) {
        m_lists[name] = &s;
      }
    }
  }
  void AddWord(const Option& option, Words& words, int level) {
    if (option.Kind != Key::CmdList) {
      words.push_back(&option);
      return;
    }
    const auto list =
        option.Arguments.empty() ? m_lists.end() : m_lists.find(core::LowerAscii(option.Arguments[0].Text));
    if (list == m_lists.end() || level >= MostListLevels) {
      return m_context.Warning(option.At, "no $cmdlist of that name can be run here");
    }
    constexpr size_t MostWords = 100000;
    for (const Option& inner : list->second->Options) {
      if (words.size() < MostWords) AddWord(inner, words, level + 1);
    }
  }
  Words WordsOf(const qc::Statement& s) {
    Words words;
    const std::string name = core::LowerAscii(NameOf(s));
    for (const Option* option : m_prepend[name]) AddWord(*option, words, 0);
    for (const Option& option : s.Options) AddWord(option, words, 0);
    for (const Option* option : m_append[name]) AddWord(*option, words, 0);
    return words;
  }

  BuiltAnimation* FindMade(std::string_view name) {
    const auto exact = m_names.find(std::string(name));
    if (exact != m_names.end()) return &m_motion.Animations[exact->second];
    const auto lower = m_lowerNames.find(core::LowerAscii(name));
    return lower == m_lowerNames.end() ? nullptr : &m_motion.Animations[lower->second];
  }
  void AddName(const std::string& name, size_t number) {
    m_names.try_emplace(name, number);
    m_lowerNames.try_emplace(core::LowerAscii(name), number);
  }

  /// Makes an animation from a source with the words that are for animations; -1 if it could not be made.
  int32_t Make(const CompilePlan::Motion& motion, const qc::Argument& source, std::string name,
               std::string_view ownName, const Words& words) {
    BuiltAnimation animation;
    animation.Name = std::move(name);
    animation.At = motion.Words->At;
    SourceUse use = motion.Settings;
    use.Source = source.Source;
    use.At = source.At;
    if (!TakeFrames(m_context, m_bones, use, animation)) return -1;
    return Finish(std::move(animation), ownName, words);
  }
  /// An animation that is nothing but the rest pose.
  int32_t MakeRest(const CompilePlan::Motion& motion, std::string name, const Words& words) {
    BuiltAnimation animation;
    animation.Name = std::move(name);
    animation.At = motion.Words->At;
    TakeRestPose(m_bones, animation);
    return Finish(std::move(animation), NameOf(*motion.Words), words);
  }
  int32_t Finish(BuiltAnimation animation, std::string_view ownName, const Words& words) {
    const FindAnimation find = [this](std::string_view wanted) {
      BuiltAnimation* found = FindMade(wanted);
      if (found != nullptr) m_bases[static_cast<size_t>(found - m_motion.Animations.data())] = true;
      return found;
    };
    m_bases.resize(m_motion.Animations.size() + 1, false);
    const auto apply = [&](const Option* word) {
      ApplyAnimationWord(m_context, m_bones, *word, animation, ownName, find);
    };
    for (const Option* word : words) {
      if (word->Kind == Key::Frames) apply(word);
    }
    for (const Option* word : words) {
      if (word->Kind != Key::Frames) apply(word);
    }
    FinishAnimation(m_context, m_bones, words, animation);
    m_motion.Animations.push_back(std::move(animation));
    m_used.push_back(false);
    return static_cast<int32_t>(m_motion.Animations.size() - 1);
  }

  void Animate(size_t number) {
    const CompilePlan::Motion& motion = m_plan.Motions[number];
    const qc::Statement& s = *motion.Words;
    if (s.Arguments.size() < 2) return;
    const int32_t made = Make(motion, s.Arguments[1], NameOf(s), NameOf(s), WordsOf(s));
    if (made >= 0) AddName(NameOf(s), static_cast<size_t>(made));
  }

  void Declare(const qc::Statement& s) {
    if (FindSequence(NameOf(s)) >= 0) return;
    BuiltSequence& sequence = m_motion.Sequences.emplace_back();
    sequence.Label = Label(s);
    sequence.At = s.At;
    sequence.Flags = model::SequenceFlagDeclared;
    sequence.Columns = sequence.Rows = 0;
    sequence.FadeIn = sequence.FadeOut = 0;
    sequence.Box = {model::Vec3{9999, 9999, 9999}, model::Vec3{-9999, -9999, -9999}};
    AddSequence(sequence.Label);
  }
  std::string Label(const qc::Statement& s) const {
    return m_plan.LowerCaseSequences ? core::LowerAscii(NameOf(s)) : NameOf(s);
  }
  int32_t FindSequence(const std::string& label) const {
    const auto found = m_sequences.find(core::LowerAscii(label));
    return found == m_sequences.end() ? -1 : found->second;
  }
  void AddSequence(const std::string& label) {
    m_sequences.try_emplace(core::LowerAscii(label), static_cast<int32_t>(m_motion.Sequences.size() - 1));
  }

  void Sequence(size_t number) {
    const CompilePlan::Motion& motion = m_plan.Motions[number];
    const qc::Statement& s = *motion.Words;
    const Words words = WordsOf(s);
    std::vector<int32_t> animations;
    size_t sources = 0;
    for (const Option* word : words) sources += word->Kind == Key::Source ? 1 : 0;
    bool used = false;
    for (const Option* word : words) {
      if (word->Kind != Key::Source || word->Arguments.empty()) continue;
      const qc::Argument& argument = word->Arguments[0];
      int32_t animation = -1;
      if (const BuiltAnimation* made = argument.Source >= 0 ? nullptr : FindMade(argument.Text)) {
        animation = static_cast<int32_t>(made - m_motion.Animations.data());
        used = true;
      } else if (argument.Source >= 0) {
        const std::string name = sources == 1 ? "@" + Label(s) : std::string(core::LastComponent(argument.Text));
        animation = Make(motion, argument, name, NameOf(s), words);
        if (animation >= 0) AddName(sources == 1 ? NameOf(s) : name, static_cast<size_t>(animation));
        if (animation >= 0 && sources == 1) AddName(name, static_cast<size_t>(animation));
      }
      if (animation < 0) {
        m_context.Warning(argument.At, "the sequence goes without " + qc::Shown(argument.Text) + ", which is not there",
                          core::TroubleKind::Missing);
        continue;
      }
      m_used[static_cast<size_t>(animation)] = true;
      animations.push_back(animation);
    }
    if (animations.empty() && m_bones.Static) {  // which needs nothing of a file
      animations.push_back(MakeRest(motion, "@" + Label(s), words));
      m_used[static_cast<size_t>(animations.back())] = true;
    }
    if (animations.empty()) {
      m_context.Warning(s.At, "the sequence " + qc::Shown(NameOf(s)) + " has no animation and is left out",
                        core::TroubleKind::Missing);
      return;
    }
    int32_t place = FindSequence(Label(s));
    if (place >= 0 && (m_motion.Sequences[static_cast<size_t>(place)].Flags & model::SequenceFlagDeclared) == 0) {
      m_context.Warning(s.At, "a second sequence is called " + qc::Shown(NameOf(s)));
      place = -1;
    }
    if (place < 0) {
      m_motion.Sequences.emplace_back();
      place = static_cast<int32_t>(m_motion.Sequences.size() - 1);
      m_motion.Sequences.back().Label = Label(s);
      AddSequence(Label(s));
    }
    BuiltSequence& sequence = m_motion.Sequences[static_cast<size_t>(place)];
    sequence = {};
    sequence.Label = Label(s);
    sequence.At = s.At;
    sequence.Animations = std::move(animations);
    m_pending.push_back({words, static_cast<size_t>(place), used});
  }

  /// An animation that is nothing but the rest pose, and that nothing but subtraction uses, is not written.
  void DropBases() {
    std::vector<int32_t> numbers;
    std::vector<BuiltAnimation> kept;
    for (size_t i = 0; i < m_motion.Animations.size(); ++i) {
      const bool drop = m_bases.size() > i && m_bases[i] && !m_used[i] && IsRest(m_motion.Animations[i]);
      numbers.push_back(drop ? -1 : static_cast<int32_t>(kept.size()));
      if (!drop) kept.push_back(std::move(m_motion.Animations[i]));
    }
    m_motion.Animations = std::move(kept);
    for (BuiltSequence& sequence : m_motion.Sequences) {
      for (int32_t& animation : sequence.Animations) animation = numbers[static_cast<size_t>(animation)];
    }
  }
  bool IsRest(const BuiltAnimation& animation) const {
    constexpr float Near = 2e-5f;
    if (animation.Delta) return false;
    for (int32_t frame = 0; frame < animation.FrameCount; ++frame) {
      for (size_t i = 0; i < m_bones.Bones.size(); ++i) {
        const BonePose& pose = animation.Pose(frame, i, m_bones.Bones.size());
        const model::RigidTransform is = model::RigidTransform::Of(
            model::EulerAngles{pose.Angles[0], pose.Angles[1], pose.Angles[2]}, model::Vec3{0, 0, 0});
        const model::RigidTransform rest = model::RigidTransform::Of(m_bones.Bones[i].Angles, model::Vec3{0, 0, 0});
        const model::Vec3 place = m_bones.Bones[i].Position;
        const std::array<float, 3> at = {place.x, place.y, place.z};
        // A turn hands what is rounded of the largest part on to the others.
        const float hair = Near * (1 + std::max({std::abs(place.x), std::abs(place.y), std::abs(place.z)}));
        for (size_t axis = 0; axis < 3; ++axis) {
          if (std::abs(pose.Position[axis] - at[axis]) > hair) return false;
          for (size_t k = 0; k < 3; ++k) {
            if (std::abs(is.Turn[axis][k] - rest.Turn[axis][k]) > double{Near}) return false;
          }
        }
      }
    }
    return true;
  }

  struct Pending {
    Words Options;
    size_t Sequence = 0;
    bool Named = false;  // it uses animations that were declared on their own
  };

  CompileContext& m_context;
  const CompilePlan& m_plan;
  const ModelBones& m_bones;
  BuiltMotion& m_motion;
  std::unordered_map<std::string, size_t> m_names, m_lowerNames;
  std::unordered_map<std::string, int32_t> m_sequences;
  std::unordered_map<std::string, Words> m_append, m_prepend;
  std::unordered_map<std::string, const qc::Statement*> m_lists;
  std::vector<bool> m_bases, m_used;
  std::vector<Pending> m_pending;
};

}  // namespace

bool BuildMotion(CompileContext& context, const ModelBones& bones, BuiltMotion& motion) {
  return MotionBuilder(context, bones, motion).Run();
}

}  // namespace tarnwick::compiler
