#include "decompiler/sources/sequences.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "core/key_values.h"
#include "decompiler/sources/animations.h"
#include "decompiler/sources/script_values.h"
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
    WriteDeclared();
    for (int64_t i = 0; i < m_sequences.Count(); ++i) {
      if (m_job.Stopped() || !m_job.ScriptWithinBounds()) break;
      if ((m_sequences[i]->Flags & SequenceFlagDeclared) == 0) WriteSequence(i);
    }
    m_animations.WriteUpTo(m_animationTable.Count());
  }

 private:
  /// Where a sequence is only declared, all are, so that they keep their order.
  void WriteDeclared() {
    bool any = false;
    for (const auto sequence : m_sequences) any = any || (sequence->Flags & SequenceFlagDeclared) != 0;
    if (!any) return;
    for (const auto sequence : m_sequences) {
      const auto label = m_job.NameOf("sequence label", sequence, sequence->LabelOffset);
      if (label) m_job.Script().Text("$declaresequence " + Quoted(m_job, *label) + "\n");
      if (!m_job.ScriptWithinBounds()) return;
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
    words += NodeWords(sequence);
    words += LayerWords(sequence, first);
    words += LockWords(sequence);
    words += EventWords(sequence, m_animationTable[first]->FrameCount);
    words += KeyValueWords(sequence);
    m_job.Script().Text(head + " {\n" + words + "}\n");
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
    const auto header = m_job.Model.Header();
    const auto poses =
        m_job.Model.View().Array<StudioPoseParameter>(header->PoseParameterOffset, header->PoseParameterCount);
    std::string words;
    for (int axis = 0; axis < 2; ++axis) {
      const int64_t number = sequence->PoseParameter[axis];
      if (number < 0) continue;
      const auto name = poses && poses->Holds(number)
                            ? m_job.Model.NameOf((*poses)[number], (*poses)[number]->NameOffset)
                            : std::nullopt;
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
    }
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
    m_job.Lose("activity modifiers", sequence->ActivityModifierCount);
    if (sequence->CyclePose != 0) m_job.Lose("pose parameters that drive a cycle");
    if (sequence->EntryPhase != 0 || sequence->ExitPhase != 0) m_job.Lose("phases of transitions");
    return words;
  }

  std::optional<std::string_view> NodeName(const core::Record<StudioSeqDesc>& sequence, int32_t number) {
    const int64_t offset = m_job.Model.Header()->NodeNameOffset + (int64_t{number} - 1) * int64_t{sizeof(StudioOffset)};
    const auto entry = number > 0 ? m_job.Model.View().At<StudioOffset>(offset) : std::nullopt;
    const auto name = entry ? m_job.Model.Name((*entry)->Offset) : std::nullopt;
    if (!name) {
      m_job.Damaged(m_job.Model.Mdl.Path(), "sequence", sequence.Offset(),
                    "names transition node " + std::to_string(number) + ", which has no name in the file");
    }
    return name;
  }

  std::string NodeWords(const core::Record<StudioSeqDesc>& sequence) {
    if (sequence->EntryNode == 0 && sequence->ExitNode == 0) return {};
    const auto entry = NodeName(sequence, sequence->EntryNode);
    const auto exit = entry ? NodeName(sequence, sequence->ExitNode) : std::nullopt;
    if (!exit) return {};
    if (sequence->EntryNode == sequence->ExitNode) return "  node " + Quoted(m_job, *entry) + "\n";
    return (sequence->NodeFlags != 0 ? "  rtransition " : "  transition ") + Quoted(m_job, *entry) + " " +
           Quoted(m_job, *exit) + "\n";
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
      if (layer->Flags != 0) m_job.Lose("flags of layers");
      const float parts[] = {layer->Start, layer->Peak, layer->Tail, layer->End};
      const bool whole = std::ranges::all_of(parts, [](float part) { return part == 0 || !std::isfinite(part); });
      words += (whole ? "  addlayer " : "  blendlayer ") + Quoted(m_job, *label);
      for (size_t i = 0; !whole && i < std::size(parts); ++i) {
        words += " " + FrameAt(parts[i], m_animationTable[firstAnimation]->FrameCount, exact);
      }
      words += "\n";
    }
    if (!exact) m_job.Lose("layers whose times lie between frames");
    return words;
  }

  std::string LockWords(const core::Record<StudioSeqDesc>& sequence) {
    std::string words;
    const auto locks =
        m_job.Table<StudioIkLock>("IK lock table", sequence.Offset() + sequence->IkLockOffset, sequence->IkLockCount);
    const auto header = m_job.Model.Header();
    const auto chains = m_job.Model.View().Array<StudioIkChain>(header->IkChainOffset, header->IkChainCount);
    if (!locks || !m_job.Spend(locks->Count() * RecordCost)) return words;
    for (const auto lock : *locks) {
      const auto chain = chains && chains->Holds(lock->Chain)
                             ? m_job.Model.NameOf((*chains)[lock->Chain], (*chains)[lock->Chain]->NameOffset)
                             : std::nullopt;
      if (!chain) {
        m_job.Lose("IK locks whose chain is not there");
        continue;
      }
      words += "  iklock " + Quoted(m_job, *chain) + " " + Number(m_job, lock->PositionWeight) + " " +
               Number(m_job, lock->RotationWeight) + "\n";
    }
    return words;
  }

  std::string EventWords(const core::Record<StudioSeqDesc>& sequence, int32_t frames) {
    std::string words;
    const auto events =
        m_job.Table<StudioEvent>("event table", sequence.Offset() + sequence->EventOffset, sequence->EventCount);
    if (!events || !m_job.Spend(events->Count() * RecordCost)) return words;
    bool exact = true;
    for (const auto event : *events) {
      words += "  { event ";
      if (event->Event != 0) {
        words += std::to_string(event->Event);
      } else {
        words += Quoted(m_job, event->NameOffset == 0 ? "" : m_job.Model.NameOf(event, event->NameOffset).value_or(""));
      }
      words += " " + FrameAt(event->Cycle, frames, exact);
      const std::string_view options = core::FixedText(event->Options);
      if (!options.empty()) words += " " + Quoted(m_job, options);
      words += " }\n";
    }
    if (!exact) m_job.Lose("sequences with events between frames");
    return words;
  }

  std::string KeyValueWords(const core::Record<StudioSeqDesc>& sequence) {
    if (sequence->KeyValueSize == 0) return {};
    m_job.Lose("key values of sequences");
    return {};
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
