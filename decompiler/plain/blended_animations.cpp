#include "decompiler/plain/blended_animations.h"

#include <utility>

namespace tarnwick::decompiler::plain {

namespace {

/// The animation that number `number` of a blend table means: the first one for a number that is none.
int64_t ClampNumber(int64_t number, int64_t count) {
  return number >= 0 && number < count ? number : 0;
}

}  // namespace

void WriteAnimationStatement(JobContext& job, const NamedAnimation& animation, std::string_view source) {
  if (animation.Name.starts_with('@')) return;
  core::TextWriter& script = job.Script();
  script.Format("$animation %s \"%s\"", animation.Name, source);
  if ((animation.Description->Flags & AnimFlagLooping) != 0) script.Text(" loop");
  script.Format(" fps %f", float{animation.Description->Fps});
  if (animation.IsDelta()) script.Format(" subtract %s 0\n", job.DeltaReference);
  script.Text("\n");
}

void ForEachBlended(JobContext& job, const core::Record<StudioSeqDesc>& sequence,
                    const std::function<bool(const core::Record<StudioAnimDesc>&, int64_t number)>& use) {
  const auto header = job.Model.Header();
  const auto animations = job.Table<StudioAnimDesc>("animation table", header->AnimOffset, header->AnimCount);
  const int64_t columns = sequence->BlendSize[0], rows = sequence->BlendSize[1];
  if (!animations) return;
  if (columns < 0 || rows < 0) {
    job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(), "has a blend table of negative size");
    return;
  }
  const auto blends = job.Table<StudioShort>("blend table", sequence.Offset() + sequence->BlendOffset, columns * rows);
  if (!blends) return;
  if (animations->Count() == 0) {
    if (blends->Count() > 0 && !std::exchange(job.Animations.NoAnimationsTold, true)) {
      job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(), "blends animations, of which there are none");
    }
    return;
  }
  for (int64_t x = 0; x < columns; ++x) {
    for (int64_t y = 0; y < rows; ++y) {
      const int64_t number = ClampNumber((*blends)[y * columns + x]->Value, animations->Count());
      if (!use((*animations)[number], number)) return;
    }
  }
}

std::string AnimationScriptName(const JobContext& job, int64_t animation) {
  const auto header = job.Model.Header();
  const auto animations = job.Model.View().Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  if (!animations || !animations->Holds(animation)) return {};
  const auto record = (*animations)[animation];
  const auto name = job.Model.NameOf(record, record->NameOffset);
  if (!name) return {};
  if (!name->starts_with('@')) return std::string(*name);
  return std::string(AnimationStem(*name));
}

}  // namespace tarnwick::decompiler::plain
