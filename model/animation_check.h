#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/animation_data.h"

namespace tarnwick::model {

/// An animation whose data are found and lie inside their files: what it takes to play it on any thread.
struct CheckedAnimation {
  /// The data of one section, or of the whole animation.
  struct Section {
    std::optional<AnimData> Data;
    bool Stands = false;  // taken from an earlier section: all its frames show the last frame of that one
  };

  core::Record<StudioAnimDesc> Description;
  std::vector<Section> Sections;

  int32_t FrameCount() const { return Description->FrameCount; }
  bool IsDelta() const { return (Description->Flags & AnimFlagDelta) != 0; }

  /// Where the data of `frame` begin: the first StudioAnim. `frame` becomes the frame within that data. Nothing if the
  /// animation says that it has none, or if they lie in a block
  /// file that is not there.
  [[nodiscard]] std::optional<AnimData> Find(int32_t& frame) const;
};

/// Tells that `what` of animation `name`, at byte `offset` of the file at `path`, cannot be. As
/// ModelReader::DamagedAnimation.
void TellAnimationDamage(ModelReader& reader, const std::string& path, std::string_view name, std::string_view what,
                         int64_t offset, std::string_view problem);

/// Finds the data of `animation` (called `name`) for all its frames, of which there is at least one, and checks every
/// record and run that playing them will touch. Nothing, told as damage, if something does not fit. Loads the block
/// file if it is needed. Takes time in step with the frames and bones of the animation.
[[nodiscard]] std::optional<CheckedAnimation> CheckAnimation(ModelReader& reader,
                                                             const core::Record<StudioAnimDesc>& animation,
                                                             std::string_view name);

}  // namespace tarnwick::model
