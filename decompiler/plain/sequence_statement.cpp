#include "decompiler/plain/sequence_statement.h"

#include <string>

#include "decompiler/plain/blended_animations.h"
#include "decompiler/stages/node_name.h"
#include "model/script_records.h"
#include "model/sequence_blend.h"
#include "model/truncate.h"

namespace tarnwick::decompiler::plain {

namespace {

/// Sequences are judged with every pose parameter at 0.
constexpr PoseValues RestPose = {};

bool WriteNodes(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  if (sequence->EntryNode == 0) return true;
  const auto entry = NodeName(job, sequence, sequence->EntryNode);
  if (!entry) return false;
  if (sequence->EntryNode == sequence->ExitNode) {
    job.Script().Format(" node %s", *entry);
    return true;
  }
  const auto exit = NodeName(job, sequence, sequence->ExitNode);
  if (!exit) return false;
  job.Script().Format(" %s %s %s", sequence->NodeFlags != 0 ? "rtransition" : "transition", *entry, *exit);
  return true;
}

bool WriteEvents(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  if (sequence->EventCount == 0) return true;
  const auto events =
      job.Table<StudioEvent>("event table", sequence.Offset() + sequence->EventOffset, sequence->EventCount);
  if (!events) return false;
  core::TextWriter& script = job.Script();
  script.Text(" {\n");
  const auto last = static_cast<float>(SequenceLastFrame(job.Model, sequence, RestPose));
  for (const auto event : *events) {
    if (!job.ScriptWithinBounds()) return false;
    script.Text("  { event");
    if (event->Event != 0) {
      script.Format(" %d", int32_t{event->Event});
    } else {
      const auto name = job.NameOf("event name", event, event->NameOffset);
      if (!name) return false;
      if (!name->empty()) script.Format(" %s", *name);
    }
    script.Format(" %d", TruncateToInt(last * event->Cycle + 0.5f));
    const std::string_view options = core::FixedText(event->Options);
    if (!options.empty()) script.Format(" \"%s\"", options);
    script.Text(" }\n");
  }
  if (sequence->BlendCount <= 1) script.Text("}\n");
  return true;
}

/// Writes the pose parameter that steers the first blend axis, if there is one.
bool WriteBlendParameter(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  const int64_t number = sequence->PoseParameter[0];
  if (number < 0) return true;
  const auto header = job.Model.Header();
  const auto poses =
      job.Table<StudioPoseParameter>("pose parameter table", header->PoseParameterOffset, header->PoseParameterCount);
  if (!poses) return false;
  if (!poses->Holds(number)) {
    job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(),
                "names pose parameter " + std::to_string(number) + " of " + std::to_string(poses->Count()));
    return false;
  }
  const auto pose = (*poses)[number];
  const auto name = job.NameOf("pose parameter name", pose, pose->NameOffset);
  if (!name) return false;
  job.Script().Format("  blend %s %f %f\n", *name, float{pose->Start}, float{pose->End});
  return true;
}

bool WriteBlends(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  if (sequence->BlendCount <= 1) return true;
  core::TextWriter& script = job.Script();
  if (sequence->EventCount == 0) script.Text(" {\n");
  script.Format("  blendwidth %d\n", int32_t{sequence->BlendCount});
  if (!WriteBlendParameter(job, sequence)) return false;
  if ((sequence->Flags & (SequenceFlagDelta | SequenceFlagPost)) != 0) script.Text("  delta\n");
  if ((sequence->Flags & SequenceFlagAutoplay) != 0) script.Text("  autoplay\n");
  for (int64_t x = 0; x < sequence->BlendSize[0]; ++x) {
    for (int64_t y = 0; y < sequence->BlendSize[1]; ++y) {
      const auto animation = BlendAnimation(job.Model, sequence, x, y);
      if (!animation) {
        job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(), "has a blend table that leaves the file");
        return false;
      }
      if (!job.ScriptWithinBounds()) return false;
      script.Format(" %s", AnimationScriptName(job, *animation));
    }
  }
  script.Text("\n}");
  return true;
}

}  // namespace

bool WriteSequenceStatement(JobContext& job, const core::Record<StudioSeqDesc>& sequence,
                            ExportAnimations& exportAnimations) {
  const auto header = job.Model.Header();
  const auto label = job.NameOf("sequence label", sequence, sequence->LabelOffset);
  const auto activity = sequence->ActivityWeight == 0
                            ? std::optional<std::string_view>("")
                            : job.NameOf("sequence activity", sequence, sequence->ActivityOffset);
  const auto animations = job.Table<StudioAnimDesc>("animation table", header->AnimOffset, header->AnimCount);
  if (!label || !activity || !animations) return false;
  const auto first = BlendAnimation(job.Model, sequence, 0, 0);
  if (!first || animations->Count() == 0) {
    job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(), "names no animation");
    return false;
  }
  const auto animation = (*animations)[*first];
  auto name = job.NameOf("animation name", animation, animation->NameOffset);
  if (!name) return false;
  // The sequence's own line uses the animation: it has no other statement, or the sequence takes its name.
  bool direct = name->starts_with('@');
  if (direct) name->remove_prefix(1);
  direct = direct || *name == *label;

  const std::string deltaReference = exportAnimations(job, sequence);

  JobContext::PartialScript part(job);
  core::TextWriter& script = job.Script();
  script.Format("$sequence %s \"%s\"", *label, AnimationScriptName(job, *first));
  if ((sequence->Flags & SequenceFlagLooping) != 0) script.Text(" loop");
  if (sequence->ActivityWeight != 0 && !activity->empty()) {
    script.Format(" %s %d", *activity, int32_t{sequence->ActivityWeight});
  }
  const float fps = SequenceFps(job.Model, sequence, RestPose);
  if (fps != 0) script.Format(" fps %2.2f", fps);
  if (direct && (animation->Flags & AnimFlagDelta) != 0) script.Format(" subtract %s 0", deltaReference);
  const bool sound = WriteNodes(job, sequence) && WriteEvents(job, sequence) && WriteBlends(job, sequence);
  script.Text("\n");
  if (sound) part.Keep();
  return sound;
}

void WriteSequenceStatements(JobContext& job, ExportAnimations& exportAnimations) {
  const auto header = job.Model.Header();
  const auto sequences = job.Table<StudioSeqDesc>("sequence table", header->SequenceOffset, header->SequenceCount);
  if (!sequences) return;
  for (const auto sequence : *sequences) {
    if (job.Stopped() || !job.ScriptWithinBounds()) break;
    if (!WriteSequenceStatement(job, sequence, exportAnimations)) job.Lose("damaged sequences");
  }
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler::plain
