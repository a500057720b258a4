#include "compiler/animation/sequence_words.h"

#include <algorithm>
#include <cmath>

#include "compiler/plan/key_value_text.h"
#include "core/number_parse.h"
#include "core/paths.h"
#include "model/transition_table.h"

namespace tarnwick::compiler {

using qc::Key;
using qc::Option;

namespace {

constexpr size_t MostNodes = 127;
constexpr size_t LongestEventOptions = 63;

struct FlagWord {
  Key Word;
  uint32_t Flags;
};
constexpr FlagWord FlagWords[] = {
    {Key::Snap, model::SequenceFlagSnap},
    {Key::Autoplay, model::SequenceFlagAutoplay},
    {Key::Realtime, model::SequenceFlagRealtime},
    {Key::Hidden, model::SequenceFlagHidden},
    {Key::Delta, model::SequenceFlagDelta | model::SequenceFlagLayered},
    {Key::PreDelta, model::SequenceFlagDelta},
    {Key::Post, model::SequenceFlagLayered},
    {Key::WorldSpace, model::SequenceFlagWorldSpace | model::SequenceFlagLayered},
};

int32_t Whole(double value) {
  return std::isfinite(value) ? static_cast<int32_t>(std::clamp(value, -2147483648.0, 2147483647.0)) : 0;
}

class SequenceWords {
 public:
  SequenceWords(CompileContext& context, const ModelBones& bones, BuiltMotion& motion, BuiltSequence& sequence)
      : m_context(context), m_plan(context.Plan), m_bones(bones), m_motion(motion), m_sequence(sequence) {}

  void Apply(const std::vector<const Option*>& words) {
    m_frames = m_motion.Animations[static_cast<size_t>(m_sequence.Animations[0])].FrameCount;
    m_weights = m_plan.DefaultWeights ? &*m_plan.DefaultWeights : nullptr;
    for (const Option* word : words) {
      if (!Plain(*word) && !Blend(*word)) Listed(*word);
    }
    Grid();
    const auto loops = [&](int32_t a) { return m_motion.Animations[static_cast<size_t>(a)].Loops; };
    if (std::ranges::all_of(m_sequence.Animations, loops)) m_sequence.Flags |= model::SequenceFlagLooping;
    Weights();
    for (const int32_t a : m_sequence.Animations) {
      const auto rules = static_cast<int32_t>(m_motion.Animations[static_cast<size_t>(a)].IkRules.size());
      m_sequence.MostIkRules = std::max(m_sequence.MostIkRules, rules);
    }
  }

 private:
  std::string Text(const Option& word, size_t i) const {
    return i < word.Arguments.size() ? std::string(word.Arguments[i].Text) : std::string();
  }
  float Number(const Option& word, size_t i) const { return static_cast<float>(word.Number(i)); }
  void NotBuilt(const Option& word) {
    m_context.Warning(word.At, qc::Shown(word.Name) + " is known, but nothing is built from it",
                      core::TroubleKind::Lost);
  }

  bool Plain(const Option& word) {
    for (const FlagWord& flag : FlagWords) {
      if (flag.Word != word.Kind) continue;
      m_sequence.Flags |= flag.Flags;
      return true;
    }
    switch (word.Kind) {
      case Key::Activity:
        m_sequence.Activity = Text(word, 0);
        m_sequence.ActivityWeight = word.Arguments.size() > 1 ? Whole(word.Number(1)) : 1;
        return true;
      case Key::ActivityModifier:
        for (size_t i = 0; i < word.Arguments.size(); ++i) m_sequence.ActivityModifiers.push_back(Text(word, i));
        return true;
      case Key::FadeIn:
        m_sequence.FadeIn = Number(word, 0);
        return true;
      case Key::FadeOut:
        m_sequence.FadeOut = Number(word, 0);
        return true;
      case Key::Node:
        m_sequence.EntryNode = m_sequence.ExitNode = Node(word, 0);
        return true;
      case Key::Transition:
      case Key::RTransition:
        m_sequence.EntryNode = Node(word, 0);
        m_sequence.ExitNode = Node(word, 1);
        m_sequence.NodeFlags = word.Kind == Key::RTransition ? 1 : 0;
        return true;
      case Key::ExitPhase:
        m_sequence.ExitPhase = Number(word, 0);
        return true;
      default:
        return false;
    }
  }
  int32_t Node(const Option& word, size_t i) {
    const std::string name = Text(word, i);
    const auto same = [&](const std::string& other) { return core::EqualIgnoringCase(name, other); };
    const auto found = std::ranges::find_if(m_motion.Nodes, same);
    if (found != m_motion.Nodes.end()) return static_cast<int32_t>(found - m_motion.Nodes.begin()) + 1;
    if (m_motion.Nodes.size() == MostNodes) {
      m_context.Error(word.At, "more than 127 nodes", core::TroubleKind::Limit);
      return 0;
    }
    m_motion.Nodes.push_back(name);
    return static_cast<int32_t>(m_motion.Nodes.size());
  }

  bool Blend(const Option& word) {
    switch (word.Kind) {
      case Key::Blend: {
        if (m_axes == 2) {
          m_context.Warning(word.At, "a sequence has at most two axes of blends");
          return true;
        }
        m_sequence.PoseParameters[m_axes] = Pose(Text(word, 0), Number(word, 1), Number(word, 2));
        m_sequence.PoseStart[m_axes] = Number(word, 1);
        m_sequence.PoseEnd[m_axes] = Number(word, 2);
        ++m_axes;
        return true;
      }
      case Key::BlendWidth:
        m_width = Whole(word.Number(0));
        return true;
      case Key::PoseCycle:
        m_sequence.CyclePose = Pose(Text(word, 0), 0, 1);
        return true;
      case Key::BlendCenter:
      case Key::BlendRef:
      case Key::BlendComp:
      case Key::CalcBlend:
        NotBuilt(word);
        return true;
      default:
        return false;
    }
  }
  int32_t Pose(const std::string& name, float start, float end) {
    const auto same = [&](const BuiltPoseParameter& p) { return core::EqualIgnoringCase(p.Name, name); };
    const auto found = std::ranges::find_if(m_motion.PoseParameters, same);
    if (found != m_motion.PoseParameters.end()) return static_cast<int32_t>(found - m_motion.PoseParameters.begin());
    m_motion.PoseParameters.push_back({name, std::min(start, end), std::max(start, end), 0, false});
    return static_cast<int32_t>(m_motion.PoseParameters.size() - 1);
  }
  void Grid() {
    const auto count = static_cast<int32_t>(m_sequence.Animations.size());
    int32_t columns = count;
    if (m_width > count) {
      m_context.Warning(m_sequence.At, "the blends are " + std::to_string(count) + ", fewer than the blendwidth of " +
                                           std::to_string(m_width) + "; they stand in one row");
    }
    if (m_width > 0 && m_width <= count) columns = m_width;
    if (m_width <= 0 && (count == 4 || count == 9)) columns = count == 4 ? 2 : 3;
    const int32_t rows = count / columns;
    if (rows * columns != count) {
      m_context.Warning(m_sequence.At, "the last row of the blends is not full and is left out");
      m_sequence.Animations.resize(static_cast<size_t>(rows) * static_cast<size_t>(columns));
    }
    m_sequence.Columns = columns;
    m_sequence.Rows = rows;
    if (m_axes == 0 || count <= 1) return;
    for (size_t axis = 0; axis < 2; ++axis) {
      const int32_t keys = axis == 0 ? columns : rows;
      const float start = m_sequence.PoseStart[axis], end = m_sequence.PoseEnd[axis];
      for (int32_t i = 0; i < keys; ++i) {
        const float t = keys <= 1 ? 0 : static_cast<float>(i) / static_cast<float>(keys - 1);
        m_sequence.PoseKeys.push_back(start + (end - start) * t);
      }
    }
  }

  void Listed(const Option& word) {
    switch (word.Kind) {
      case Key::WeightList: {
        const auto same = [&](const PlanWeightList& list) { return core::EqualIgnoringCase(list.Name, Text(word, 0)); };
        const auto found = std::ranges::find_if(m_plan.WeightLists, same);
        if (found == m_plan.WeightLists.end()) {
          m_context.WarnOfUnknown(Text(word, 0), word.At, "no $weightlist is called " + qc::Shown(Text(word, 0)));
        } else {
          m_weights = &*found;
        }
        break;
      }
      case Key::AddLayer:
      case Key::BlendLayer:
        Layer(word);
        break;
      case Key::IkLock:
        Lock(word);
        break;
      case Key::Event:
        Event(word);
        break;
      case Key::KeyValues:
        if (word.Text >= 0)
          m_sequence.KeyValues += KeyValueBody(m_plan.Script.KeyValues[static_cast<size_t>(word.Text)]);
        break;
      default:
        break;  // a word of animations
    }
  }
  float PartOf(float frame) const { return m_frames <= 1 ? 0 : frame / static_cast<float>(m_frames - 1); }
  void Layer(const Option& word) {
    model::StudioAutoLayer layer = {};
    const auto same = [&](const BuiltSequence& s) { return core::EqualIgnoringCase(s.Label, Text(word, 0)); };
    const auto found = std::ranges::find_if(m_motion.Sequences, same);
    if (found == m_motion.Sequences.end()) {
      return m_context.WarnOfUnknown(Text(word, 0), word.At, "no sequence is called " + qc::Shown(Text(word, 0)));
    }
    layer.Sequence = static_cast<int16_t>(found - m_motion.Sequences.begin());
    if (word.Kind == Key::BlendLayer) {
      layer.Start = PartOf(Number(word, 1));
      layer.Peak = PartOf(Number(word, 2));
      layer.Tail = PartOf(Number(word, 3));
      layer.End = PartOf(Number(word, 4));
    }
    for (const Option& option : word.Options) {
      if (option.Kind == Key::Local) {
        layer.Flags |= model::LayerFlagLocal;
      } else {
        NotBuilt(option);
      }
    }
    m_sequence.Layers.push_back(layer);
  }
  void Lock(const Option& word) {
    model::StudioIkLock lock = {};
    const auto same = [&](const PlanIkChain& c) { return core::EqualIgnoringCase(c.Name, Text(word, 0)); };
    const auto found = std::ranges::find_if(m_plan.IkChains, same);
    if (found == m_plan.IkChains.end()) {
      return m_context.Warning(word.At, "no $ikchain is called " + qc::Shown(Text(word, 0)));
    }
    lock.Chain = static_cast<int32_t>(found - m_plan.IkChains.begin());
    lock.PositionWeight = Number(word, 1);
    lock.RotationWeight = Number(word, 2);
    m_sequence.IkLocks.push_back(lock);
  }
  void Event(const Option& word) {
    BuiltEvent event;
    const std::string name = Text(word, 0);
    const bool number = !name.empty() && (std::isdigit(static_cast<unsigned char>(name[0])) != 0 || name[0] == '-');
    event.Number = number ? core::ParseWhole(name) : 0;
    if (!number) event.Name = name;
    event.Cycle = PartOf(Number(word, 1));
    if (event.Cycle > 1 || event.Cycle < 0) {
      m_context.Warning(word.At, "the event's frame is none of the animation's " + std::to_string(m_frames));
    }
    event.Options = Text(word, 2);
    if (event.Options.size() > LongestEventOptions) {
      m_context.Warning(word.At, "an event's options are cut to 63 letters", core::TroubleKind::Limit);
      event.Options.resize(LongestEventOptions);
    }
    m_sequence.Events.push_back(std::move(event));
  }

  void Weights() {
    m_sequence.Weights.assign(m_bones.Bones.size(), m_weights == nullptr ? 1.0f : 0.0f);
    if (m_weights == nullptr) return;
    std::vector<bool> given(m_bones.Bones.size(), false);
    for (const auto& [name, weight] : m_weights->Bones) {
      const int32_t bone = m_bones.Named(name);
      if (bone < 0) continue;
      m_sequence.Weights[static_cast<size_t>(bone)] = weight;
      given[static_cast<size_t>(bone)] = true;
    }
    for (size_t i = 0; i < m_bones.Bones.size(); ++i) {
      const int32_t parent = m_bones.Bones[i].Parent;
      if (!given[i] && parent >= 0) m_sequence.Weights[i] = m_sequence.Weights[static_cast<size_t>(parent)];
    }
  }

  CompileContext& m_context;
  const CompilePlan& m_plan;
  const ModelBones& m_bones;
  BuiltMotion& m_motion;
  BuiltSequence& m_sequence;
  const PlanWeightList* m_weights = nullptr;
  int32_t m_frames = 1;
  int32_t m_width = 0;
  size_t m_axes = 0;
};

/// A word that changes the frames of an animation as it is made.
bool ChangesFrames(Key kind) {
  constexpr Key Kinds[] = {Key::Frames,  Key::NumFrames, Key::Origin,      Key::Rotate,      Key::Angles,
                           Key::Scale,   Key::Reverse,   Key::StartLoop,   Key::FixupLoop,   Key::FudgeLoop,
                           Key::Align,   Key::AlignTo,   Key::RotateTo,    Key::Subtract,    Key::PreSubtract,
                           Key::Extract, Key::WalkFrame, Key::LinearDelta, Key::SplineDelta, Key::NoAnimation,
                           Key::IkRule,  Key::IkFixup};
  return std::ranges::find(Kinds, kind) != std::end(Kinds);
}

}  // namespace

void ApplySequenceWords(CompileContext& context, const ModelBones& bones, const std::vector<const Option*>& words,
                        BuiltMotion& motion, size_t number, bool named) {
  BuiltSequence& sequence = motion.Sequences[number];
  if (named) {
    // Words of animations on a sequence of named ones: looping and speed are what a script means by them.
    for (const Option* word : words) {
      for (const int32_t a : sequence.Animations) {
        BuiltAnimation& animation = motion.Animations[static_cast<size_t>(a)];
        if (word->Kind == Key::Loop) animation.Loops = true;
        if (word->Kind == Key::Fps) animation.Fps = static_cast<float>(word->Number(0));
      }
      if (ChangesFrames(word->Kind)) {
        context.Warning(
            word->At,
            qc::Shown(word->Name) + " belongs to an $animation; those that the sequence names stay as they are",
            core::TroubleKind::Lost);
      }
    }
  }
  SequenceWords(context, bones, motion, sequence).Apply(words);
}

void BuildNodeTable(CompileContext& context, BuiltMotion& motion) {
  std::vector<model::NodeStep> steps;
  for (const BuiltSequence& sequence : motion.Sequences) {
    steps.push_back({sequence.EntryNode, sequence.ExitNode});
    if (sequence.NodeFlags != 0) steps.push_back({sequence.ExitNode, sequence.EntryNode});
  }
  motion.NodeTable = model::TransitionTable(motion.Nodes.size(), steps, context.Plan.CalcTransitions);
}

}  // namespace tarnwick::compiler
