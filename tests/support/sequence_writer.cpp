#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using namespace model;

using Sequences = FileBuilder::Table<StudioSeqDesc>;

void WriteEvents(const SequenceDescription& sequence, const Sequences& sequences, int64_t i, FileBuilder& mdl) {
  const auto events = mdl.Reserve<StudioEvent>(static_cast<int64_t>(sequence.Events.size()),
                                               PlaceName("events", {static_cast<size_t>(i)}));
  sequences[i].EventCount = static_cast<int32_t>(events.Count);
  sequences[i].EventOffset = sequences.To(events.Offset, i);
  for (int64_t e = 0; e < events.Count; ++e) {
    const EventDescription& event = sequence.Events[static_cast<size_t>(e)];
    const int32_t name = mdl.Text(event.Name);
    events[e].Cycle = event.Cycle;
    events[e].Event = event.Event;
    event.Options.copy(events[e].Options, sizeof(events[e].Options) - 1);
    events[e].NameOffset = events.To(name, e);
  }
  mdl.Align(4);
}

void WriteBlends(const SequenceDescription& sequence, const Sequences& sequences, int64_t i, FileBuilder& mdl) {
  mdl.Mark(PlaceName("blends", {static_cast<size_t>(i)}));
  sequences[i].BlendCount = static_cast<int32_t>(sequence.Blends.size());
  sequences[i].BlendOffset = sequences.To(mdl.Size(), i);
  for (const int16_t animation : sequence.Blends) mdl.AppendValue(animation);
  mdl.Align(4);
  for (size_t axis = 0; axis < 2; ++axis) {
    sequences[i].BlendSize[axis] = sequence.BlendSize[axis];
    sequences[i].PoseParameter[axis] = sequence.PoseParameter[axis];
    sequences[i].PoseStart[axis] = sequence.PoseStart[axis];
    sequences[i].PoseEnd[axis] = sequence.PoseEnd[axis];
  }
  if (sequence.PoseKeys.empty()) return;
  mdl.Mark(PlaceName("pose keys", {static_cast<size_t>(i)}));
  sequences[i].PoseKeyOffset = sequences.To(mdl.Size(), i);
  for (const float key : sequence.PoseKeys) mdl.AppendValue(key);
}

/// What plays with the sequence: layers, a weight list, locks of limbs.
void WriteCompanions(const SequenceDescription& sequence, const Sequences& sequences, int64_t i, FileBuilder& mdl) {
  const auto place = [&](const auto& records, const char* name) {
    return sequences.To(WriteRecords(records, PlaceName(name, {static_cast<size_t>(i)}), mdl), i);
  };
  sequences[i].FadeIn = sequence.FadeIn;
  sequences[i].FadeOut = sequence.FadeOut;
  const int32_t layers = place(sequence.Layers, "layers");
  const int32_t locks = place(sequence.IkLocks, "ik locks");
  const int32_t weights = place(sequence.Weights, "weights");
  sequences[i].LayerCount = static_cast<int32_t>(sequence.Layers.size());
  sequences[i].LayerOffset = layers;
  sequences[i].IkLockCount = static_cast<int32_t>(sequence.IkLocks.size());
  sequences[i].IkLockOffset = locks;
  sequences[i].WeightOffset = sequence.Weights.empty() ? 0 : weights;
}

}  // namespace

void WriteSequences(const ModelBuilder& model, FileBuilder& mdl) {
  const auto sequences = ReserveInHeader<StudioSeqDesc>(model.Sequences, "sequences", mdl, &StudioHeader::SequenceCount,
                                                        &StudioHeader::SequenceOffset);
  for (int64_t i = 0; i < sequences.Count; ++i) {
    const SequenceDescription& sequence = model.Sequences[static_cast<size_t>(i)];
    const int32_t label = mdl.Text(sequence.Label);
    const int32_t activity = mdl.Text(sequence.Activity);
    sequences[i].HeaderOffset = -sequences.At(i);
    sequences[i].LabelOffset = sequences.To(label, i);
    sequences[i].ActivityOffset = sequences.To(activity, i);
    sequences[i].Activity = -1;
    sequences[i].ActivityWeight = sequence.ActivityWeight;
    sequences[i].Flags = sequence.Flags;
    sequences[i].EntryNode = sequence.EntryNode;
    sequences[i].ExitNode = sequence.ExitNode;
    sequences[i].NodeFlags = sequence.NodeFlags;
    mdl.Align(4);
    WriteEvents(sequence, sequences, i, mdl);
    WriteBlends(sequence, sequences, i, mdl);
    WriteCompanions(sequence, sequences, i, mdl);
  }
}

}  // namespace tarnwick::tests
