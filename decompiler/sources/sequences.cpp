#include "decompiler/sources/sequences.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include "decompiler/sources/animations.h"
#include "decompiler/sources/ik_chains.h"
#include "decompiler/sources/key_values.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/sources/transition_nodes.h"
#include "decompiler/sources/weight_lists.h"
#include "model/script_records.h"
#include "model/sequence_blend.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr float DefaultFade = 0.2f;

struct FlagWord {
  uint32_t Flag;
  std::string_view Word;
};
constexpr FlagWord FlagWords[] = {{SequenceFlagSnap, "snap"},
                                  {SequenceFlagAutoplay, "autoplay"},
                                  {SequenceFlagRealtime, "realtime"},
                                  {SequenceFlagHidden, "hidden"},
                                  {SequenceFlagWorldSpace, "worldspace"}};

/// Writes the sequences of a model one after the other.
class Sequences {
 public:
  Sequences(JobContext& job, const core::RecordArray<StudioSeqDesc>& sequences,
            const core::RecordArray<StudioAnimDesc>& animations)
      : m_job(job), m_sequences(sequences), m_animationTable(animations), m_animations(job, animations, sequences) {}

  void Run() {
    m_weights.Write(m_job, m_sequences);
    const std::vector<int64_t> order = OrderOfStatements();
    WriteDeclared(!std::ranges::is_sorted(order));
    for (const int64_t i : order) {
      if (m_job.Stopped() || !m_job.ScriptWithinBounds()) break;
      if ((m_sequences[i]->Flags & SequenceFlagDeclared) == 0) WriteSequence(i);
    }
    m_animations.WriteUpTo(m_animationTable.Count());
    WriteTransitions(m_job, m_sequences);
  }

 private:
  /// The sequences in the order of their statements: that of the file, or where that would number the animations
  /// otherwise, one in which they stand by their animations.
  std::vector<int64_t> OrderOfStatements() {
    std::vector<int64_t> order(static_cast<size_t>(m_sequences.Count()));
    std::iota(order.begin(), order.end(), int64_t{0});
    if (m_animationTable.Count() == 0) return order;
    std::vector<int64_t> last(order.size(), -1);  // the last animation of each sequence
    int64_t written = -1;
    bool inOrder = true;
    for (const int64_t i : order) {
      const auto sequence = m_sequences[i];
      const auto blends = m_job.Model.View().Array<StudioShort>(
          sequence.Offset() + sequence->BlendOffset, int64_t{sequence->BlendSize[0]} * sequence->BlendSize[1]);
      if ((sequence->Flags & SequenceFlagDeclared) != 0 || !blends) continue;
      if (!m_job.Spend(blends->Count() * RecordCost)) return order;
      const auto own = static_cast<size_t>(i);
      for (const auto entry : *blends) {
        const int64_t animation = AnimationNumber(entry->Value);
        last[own] = std::max(last[own], animation);
        const int64_t owner = m_animations.OwnerOf(animation);
        inOrder = inOrder && owner <= i && (owner != i || animation > written);
      }
      written = std::max(written, last[own]);
    }
    if (inOrder) return order;
    const auto key = [&](int64_t i) {
      const int64_t animation = last[static_cast<size_t>(i)];
      const bool isOwn = animation >= 0 && m_animations.OwnerOf(animation) == i;
      return std::pair(animation, isOwn ? 0 : 1);
    };
    std::vector<int64_t> other = order;
    std::ranges::stable_sort(other, {}, key);
    return NamesNodesInOrder(other) || !NamesNodesInOrder(order) ? other : order;
  }

  /// Whether statements in that order name the nodes as they are numbered.
  bool NamesNodesInOrder(const std::vector<int64_t>& order) const {
    int32_t named = 0;
    for (const int64_t i : order) {
      for (const int32_t node : {int32_t{m_sequences[i]->EntryNode}, int32_t{m_sequences[i]->ExitNode}}) {
        if (node > named + 1) return false;
        named = std::max(named, node);
      }
    }
    return true;
  }

  /// Where a sequence is only declared, or stands elsewhere than its statement, all are declared, so that they keep
  /// their order.
  void WriteDeclared(bool any) {
    for (const auto sequence : m_sequences) any = any || (sequence->Flags & SequenceFlagDeclared) != 0;
    if (!any) return;
    for (const auto sequence : m_sequences) {
      const auto label = m_job.NameOf("sequence label", sequence, sequence->LabelOffset);
      if (label) m_job.Script().Text("$declaresequence " + Quoted(m_job, *label) + "\n");
      if ((sequence->Flags & SequenceFlagDeclared) != 0) CountLostOfDeclared(sequence);
      if (!m_job.ScriptWithinBounds()) return;
    }
  }

  /// A declared sequence is a name; the included model that has it says all else.
  void CountLostOfDeclared(const core::Record<StudioSeqDesc>& sequence) {
    const auto activity = m_job.Model.NameOf(sequence, sequence->ActivityOffset);
    if ((activity && !activity->empty()) || sequence->EventCount > 0 || sequence->LayerCount > 0 ||
        sequence->KeyValueSize > 0 || sequence->ActivityModifierCount > 0) {
      m_job.Lose("declared sequences that hold more than a name");
    }
  }

  void LeaveOut(int64_t number, std::string_view reason) {
    m_job.Lose("sequences that cannot be read");
    m_job.Script().Text("// a sequence is left out, since " + std::string(reason) + ": number " +
                        std::to_string(number) + "\n");
  }

  void WriteSequence(int64_t number) {
    const auto sequence = m_sequences[number];
    const auto label = m_job.NameOf("sequence label", sequence, sequence->LabelOffset);
    if (!label) return LeaveOut(number, "it has no name");
    const int64_t columns = sequence->BlendSize[0], rows = sequence->BlendSize[1];
    const auto blends =
        columns > 0 && rows > 0 && m_animationTable.Count() > 0
            ? m_job.Table<StudioShort>("blend table", sequence.Offset() + sequence->BlendOffset, columns * rows)
            : std::nullopt;
    if (!blends || !m_job.Spend(blends->Count() * RecordCost)) return LeaveOut(number, "it names no animations");

    const int64_t first = AnimationNumber((*blends)[0]->Value);
    std::string head = "$sequence " + Quoted(m_job, *label);
    std::string words;
    if (m_animations.OwnerOf(first) == number) {
      m_animations.WriteUpTo(first);
      auto own = m_animations.WriteOwn(first, *label);
      if (!own) return LeaveOut(number, "its animation cannot be read");
      head += " " + Quoted(m_job, own->File);
      words = std::move(own->Words);
    } else {
      auto grid = GridWords(*blends, columns);
      if (!grid) return LeaveOut(number, "one of its animations cannot be read");
      words = std::move(*grid);
    }
    words += BlendWords(sequence);
    words += PlainWords(sequence, number);
    words += NodeWords(m_job, sequence);
    words += LayerWords(sequence, first);
    words += LockWords(sequence);
    words += EventWords(sequence, m_animationTable[first]->FrameCount);
    CountOtherLoop(sequence, *blends);
    words += SequenceKeyValues(m_job, sequence);
    m_job.Script().Text(head + " {\n" + words + "}\n");
  }

  /// A compile lets a sequence loop if all its animations do.
  void CountOtherLoop(const core::Record<StudioSeqDesc>& sequence, const core::RecordArray<StudioShort>& blends) {
    bool all = true;
    for (const auto entry : blends) {
      all = all && (m_animationTable[AnimationNumber(entry->Value)]->Flags & AnimFlagLooping) != 0;
    }
    if (all != ((sequence->Flags & SequenceFlagLooping) != 0)) {
      m_job.Lose("sequences that loop otherwise than their animations");
    }
  }

  /// The animation that an entry of a blend table means: the first one for a number that is none.
  int64_t AnimationNumber(int64_t number) const { return m_animationTable.Holds(number) ? number : 0; }

  std::optional<std::string> GridWords(const core::RecordArray<StudioShort>& blends, int64_t columns) {
    std::string words;
    for (int64_t i = 0; i < blends.Count(); ++i) {
      const int64_t animation = AnimationNumber(blends[i]->Value);
      m_animations.Require(animation);
      const auto name = m_animations.NameOf(animation);
      if (!name) return std::nullopt;
      words += (i % columns == 0 ? "  " : " ") + Quoted(m_job, *name);
      if (i % columns == columns - 1) words += "\n";
    }
    if (blends.Count() > 1) words += "  blendwidth " + std::to_string(columns) + "\n";
    return words;
  }

  std::string BlendWords(const core::Record<StudioSeqDesc>& sequence) {
    std::string words;
    for (int axis = 0; axis < 2; ++axis) {
      const int64_t number = sequence->PoseParameter[axis];
      if (number < 0) {
        // The first `blend` of a sequence is its first axis; one without a parameter has no statement.
        const bool ranges = sequence->PoseStart[axis] != 0 || sequence->PoseEnd[axis] != 0;
        if (ranges || (axis == 0 && sequence->PoseParameter[1] >= 0)) m_job.Lose("blend axes without a pose parameter");
        continue;
      }
      const auto name = PoseName(number);
      if (!name) {
        m_job.Lose("blend axes whose pose parameter is not there");
        continue;
      }
      words += "  blend " + Quoted(m_job, *name) + " " + Number(m_job, sequence->PoseStart[axis]) + " " +
               Number(m_job, sequence->PoseEnd[axis]) + "\n";
      if (!KeysAreEven(sequence, axis)) m_job.Lose("blend axes whose keys were measured");
    }
    return words;
  }

  /// Whether the pose keys of an axis, if there are any, lie evenly from its start to its end.
  bool KeysAreEven(const core::Record<StudioSeqDesc>& sequence, int axis) const {
    const int64_t count = sequence->BlendSize[axis];
    if (sequence->PoseKeyOffset == 0 || count <= 1) return true;
    const float start = sequence->PoseStart[axis], end = sequence->PoseEnd[axis];
    const float tolerance = 1e-5f * (1 + std::abs(start) + std::abs(end));
    for (int64_t i = 0; i < count; ++i) {
      const int64_t entry = (axis == 0 ? 0 : int64_t{sequence->BlendSize[0]}) + i;
      const auto key =
          m_job.Model.View().Value<float>(sequence.Offset() + sequence->PoseKeyOffset + entry * int64_t{sizeof(float)});
      const float even = start + (end - start) * static_cast<float>(i) / static_cast<float>(count - 1);
      if (!key || !(std::abs(*key - even) <= tolerance)) return false;
    }
    return true;
  }

  std::string PlainWords(const core::Record<StudioSeqDesc>& sequence, int64_t number) {
    std::string words;
    const auto activity = m_job.Model.NameOf(sequence, sequence->ActivityOffset);
    if (activity && !activity->empty()) {
      words += "  activity " + Quoted(m_job, *activity) + " " + std::to_string(sequence->ActivityWeight) + "\n";
    } else if (sequence->ActivityWeight != 0) {
      m_job.Lose("weights of activities without a name");
    }
    words += ModifierWords(sequence);
    if (sequence->FadeIn != DefaultFade) words += "  fadein " + Number(m_job, sequence->FadeIn) + "\n";
    if (sequence->FadeOut != DefaultFade) words += "  fadeout " + Number(m_job, sequence->FadeOut) + "\n";
    if (const std::string& list = m_weights.NameOf(number); !list.empty()) {
      words += "  weightlist " + Quoted(m_job, list) + "\n";
    }
    uint32_t left = sequence->Flags & ~SequenceFlagLooping;  // the animations say that they loop
    for (const FlagWord& flag : FlagWords) {
      if ((left & flag.Flag) != 0) words += "  " + std::string(flag.Word) + "\n";
      left &= ~flag.Flag;
    }
    const bool worldSpace = (sequence->Flags & SequenceFlagWorldSpace) != 0;
    if ((left & SequenceFlagDelta) != 0) {
      words += (left & SequenceFlagLayered) != 0 ? "  delta\n" : "  predelta\n";
    } else if ((left & SequenceFlagLayered) != 0 && !worldSpace) {
      words += "  post\n";
    }
    left &= ~(SequenceFlagDelta | SequenceFlagLayered);
    if ((left & SequenceFlagCalcBlend) != 0) m_job.Lose("blends that were computed from an attachment");
    m_job.Lose("sequence flags without a statement", std::popcount(left & ~SequenceFlagCalcBlend));
    words += CycleWords(sequence);
    if (sequence->ExitPhase != 0) words += "  exitphase " + Number(m_job, sequence->ExitPhase) + "\n";
    if (sequence->EntryPhase != 0) m_job.Lose("phases at which transitions are entered");
    return words;
  }

  std::string ModifierWords(const core::Record<StudioSeqDesc>& sequence) {
    std::string words;
    const auto modifiers = m_job.Model.View().Array<StudioOffset>(sequence.Offset() + sequence->ActivityModifierOffset,
                                                                  sequence->ActivityModifierCount);
    if (!modifiers || !m_job.Spend(modifiers->Count() * RecordCost)) {
      m_job.Lose("activity modifiers that cannot be read", sequence->ActivityModifierCount);
      return words;
    }
    for (const auto modifier : *modifiers) {
      const auto name = m_job.Model.NameOf(modifier, modifier->Offset);
      if (name && !name->empty()) {
        words += "  activitymodifier " + Quoted(m_job, *name) + "\n";
      } else {
        m_job.Lose("activity modifiers that cannot be read");
      }
    }
    return words;
  }

  /// The pose parameter that stands for the time of the sequence.
  std::string CycleWords(const core::Record<StudioSeqDesc>& sequence) {
    if (sequence->CyclePose == 0) return {};
    const auto name = PoseName(sequence->CyclePose);
    if (!name) {
      m_job.Lose("pose parameters of cycles that are not there");
      return {};
    }
    return "  posecycle " + Quoted(m_job, *name) + "\n";
  }

  std::optional<std::string_view> PoseName(int64_t number) const {
    const auto header = m_job.Model.Header();
    const auto poses =
        m_job.Model.View().Array<StudioPoseParameter>(header->PoseParameterOffset, header->PoseParameterCount);
    if (!poses || !poses->Holds(number)) return std::nullopt;
    return m_job.Model.NameOf((*poses)[number], (*poses)[number]->NameOffset);
  }

  std::string LayerWords(const core::Record<StudioSeqDesc>& sequence, int64_t firstAnimation) {
    std::string words;
    const auto layers =
        m_job.Table<StudioAutoLayer>("layer table", sequence.Offset() + sequence->LayerOffset, sequence->LayerCount);
    if (!layers || !m_job.Spend(layers->Count() * RecordCost)) return words;
    bool exact = true;
    for (const auto layer : *layers) {
      const auto label =
          m_sequences.Holds(layer->Sequence)
              ? m_job.Model.NameOf(m_sequences[layer->Sequence], m_sequences[layer->Sequence]->LabelOffset)
              : std::nullopt;
      if (!label) {
        m_job.Lose("layers whose sequence is not there");
        continue;
      }
      const bool local = (layer->Flags & LayerFlagLocal) != 0;
      if ((layer->Flags & ~LayerFlagLocal) != 0) m_job.Lose("flags of layers without a statement");
      if (layer->PoseParameter > 0) m_job.Lose("pose parameters of layers");
      const float parts[] = {layer->Start, layer->Peak, layer->Tail, layer->End};
      const bool whole = std::ranges::all_of(parts, [](float part) { return part == 0 || !std::isfinite(part); });
      const bool adds = whole && !local;  // what is added takes no words
      words += (adds ? "  addlayer " : "  blendlayer ") + Quoted(m_job, *label);
      for (size_t i = 0; !adds && i < std::size(parts); ++i) {
        words += " " + FrameAt(parts[i], m_animationTable[firstAnimation]->FrameCount, exact);
      }
      words += local ? " local\n" : "\n";
    }
    if (!exact) m_job.Lose("layers whose times lie between frames");
    return words;
  }

  std::string LockWords(const core::Record<StudioSeqDesc>& sequence) {
    std::string words;
    const auto locks =
        m_job.Table<StudioIkLock>("IK lock table", sequence.Offset() + sequence->IkLockOffset, sequence->IkLockCount);
    if (!locks || !m_job.Spend(locks->Count() * RecordCost)) return words;
    for (const auto lock : *locks) {
      const auto chain = ChainName(m_job, lock->Chain);
      if (!chain) {
        m_job.Lose("IK locks whose chain is not there");
        continue;
      }
      words += "  iklock " + Quoted(m_job, *chain) + " " + Number(m_job, lock->PositionWeight) + " " +
               Number(m_job, lock->RotationWeight) + "\n";
      if (lock->Flags != 0) m_job.Lose("flags of IK locks");
    }
    return words;
  }

  /// An event goes by its number, or by its name where that is 0.
  std::string EventKey(const core::Record<StudioEvent>& event) {
    const std::string_view name =
        event->NameOffset == 0 ? "" : m_job.Model.NameOf(event, event->NameOffset).value_or("");
    if (event->Event != 0 || name.empty()) {
      if (!name.empty()) m_job.Lose("names of events that have a number");
      return std::to_string(event->Event);
    }
    const bool readsAsNumber = name.front() == '-' || (name.front() >= '0' && name.front() <= '9');
    if (readsAsNumber) m_job.Lose("names of events that read as numbers");
    return Quoted(m_job, name);
  }

  std::string EventWords(const core::Record<StudioSeqDesc>& sequence, int32_t frames) {
    std::string words;
    const auto events =
        m_job.Table<StudioEvent>("event table", sequence.Offset() + sequence->EventOffset, sequence->EventCount);
    if (!events || !m_job.Spend(events->Count() * RecordCost)) return words;
    bool exact = true;
    for (const auto event : *events) {
      words += "  { event " + EventKey(event) + " " + FrameAt(event->Cycle, frames, exact);
      const std::string_view options = core::FixedText(event->Options);
      if (!options.empty()) words += " " + Quoted(m_job, options);
      words += " }\n";
    }
    if (!exact) m_job.Lose("sequences with events between frames");
    return words;
  }

  JobContext& m_job;
  core::RecordArray<StudioSeqDesc> m_sequences;
  core::RecordArray<StudioAnimDesc> m_animationTable;
  Animations m_animations;
  WeightLists m_weights;
};

}  // namespace

void WriteSequences(JobContext& job) {
  const auto header = job.Model.Header();
  const auto sequences = job.Table<StudioSeqDesc>("sequence table", header->SequenceOffset, header->SequenceCount);
  const auto animations = job.Table<StudioAnimDesc>("animation table", header->AnimOffset, header->AnimCount);
  if (sequences && animations) Sequences(job, *sequences, *animations).Run();
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler::sources
