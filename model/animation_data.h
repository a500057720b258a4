#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "model/anim_block_file.h"
#include "model/animation_records.h"
#include "model/model_reader.h"
#include "model/run_values.h"

namespace tarnwick::model {

/// One StudioAnim, in the file that holds it.
struct AnimRecord {
  core::ImageView Image;
  core::Record<StudioAnim> Anim;

  const StudioAnim* operator->() const { return &*Anim; }
  /// Where its payload begins.
  int64_t Payload() const { return Anim.Offset() + int64_t{sizeof(StudioAnim)}; }
  /// Where its raw position and the offsets of its position runs lie, if its flags say that it has them.
  int64_t RawPosition() const;
  int64_t PositionRuns() const;
};

/// The run stream of axis 0 to 2 whose offsets stand at `triple`; nothing if the axis has no runs or if the offsets do
/// not lie inside the image.
[[nodiscard]] std::optional<RunStream> RunsOfAxis(const core::ImageView& image, int64_t triple, int axis);

/// The record at `data`; nothing if it does not lie inside its file.
[[nodiscard]] std::optional<AnimRecord> AnimRecordAt(const AnimData& data);
/// The record behind `record` in its chain; nothing at the chain's end and outside the file.
[[nodiscard]] std::optional<AnimRecord> NextAnimRecord(const AnimRecord& record);

/// The number of the section that holds `frame`, which becomes the frame within that section. 0, and `frame` stays, for
/// an animation without sections. The last frame of an animation longer than a section has a section of its own, and
/// one number before it stays free.
[[nodiscard]] int64_t SectionOfFrame(const StudioAnimDesc& animation, int32_t& frame);

/// Where the data of each section of an animation are said to stand, or those of the whole. Nothing if its table does
/// not lie inside the .mdl file, or if the reader's budget does not allow for it.
[[nodiscard]] std::vector<StudioAnimSection> StoredPieces(ModelReader& reader,
                                                          const core::Record<StudioAnimDesc>& animation);

/// The IK rules of an animation, which lie with its data. Nothing if they do not lie in their file; of those of the
/// .mdl file that is told as damage. The block file is loaded if it is needed.
[[nodiscard]] std::optional<core::RecordArray<StudioIkRule>> IkRulesOf(ModelReader& reader,
                                                                       const core::Record<StudioAnimDesc>& animation);

}  // namespace tarnwick::model
