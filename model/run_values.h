#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "core/image_view.h"
#include "model/animation_records.h"
#include "model/studio_records.h"

namespace tarnwick::model {

/// Where a run stream begins.
struct RunStream {
  core::ImageView Image;
  int64_t Offset = 0;
};

/// The value of `stream` at `frame` (0 and up), sought from the stream's start, times `scale`. 0 without a stream, past
/// its end, and where it runs out of its image.
float DecodeRunValue(int32_t frame, const std::optional<RunStream>& stream, float scale);

/// Walks a run stream forward: the same values as DecodeRunValue, but each run is looked at once. A default-made
/// cursor stands for an axis without a stream.
class RunCursor {
 public:
  RunCursor() = default;
  /// A stream that begins at `offset` of the image that is given to `At`.
  explicit RunCursor(int64_t offset) : m_next(offset), m_end(0) {}

  /// The stored value at `frame`, which is at or behind the one asked for before.
  int32_t At(const core::ImageView& image, int32_t frame) {
    while (frame >= m_end) NextRun(image);
    const int32_t k = frame - m_start;
    return k < m_valid ? m_values[k].Value : m_held;
  }

  /// The stored values of the frames from `frame` on, which is at or behind the one asked for before; the cursor is
  /// then at the last of them.
  void Fill(const core::ImageView& image, int32_t frame, std::span<int16_t> values);

  /// The first frame behind `frame` (the one asked for last) that can have another value.
  int32_t HeldUntil(int32_t frame) const { return frame - m_start < m_valid - 1 ? frame + 1 : m_end; }

  /// The offset of the run at which the stream left its image or had no values; nothing if all was well so far.
  [[nodiscard]] std::optional<int64_t> DamagedAt() const {
    if (m_damagedAt < 0) return std::nullopt;
    return m_damagedAt;
  }

 private:
  static constexpr int32_t Forever = std::numeric_limits<int32_t>::max();

  void NextRun(const core::ImageView& image);
  void End();

  const StudioShort* m_values = nullptr;
  int64_t m_next = 0;        // offset of the run behind this one
  int64_t m_damagedAt = -1;  // offset of the run that could not be read
  int32_t m_start = 0;       // first frame of this run
  int32_t m_end = Forever;   // first frame behind it
  int32_t m_valid = 0;
  int32_t m_held = 0;  // the value of frames behind the valid ones
};

}  // namespace tarnwick::model
