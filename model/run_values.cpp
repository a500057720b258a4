#include "model/run_values.h"

#include <algorithm>
#include <cstring>

namespace tarnwick::model {

namespace {

struct Run {
  core::Record<StudioRunHead> Head;
  core::RecordArray<StudioShort> Values;
};

/// The run at `offset`; nothing if it does not lie inside the image, or covers
/// frames but has no value. A run that ends the stream has no values.
std::optional<Run> ReadRun(const core::ImageView& image, int64_t offset) {
  const auto head = image.At<StudioRunHead>(offset);
  if (!head) return std::nullopt;
  if ((*head)->Total == 0) return Run{*head, {}};
  if ((*head)->Valid == 0) return std::nullopt;
  const auto values = image.Array<StudioShort>(offset + int64_t{sizeof(StudioRunHead)}, (*head)->Valid);
  if (!values) return std::nullopt;
  return Run{*head, *values};
}

int64_t Behind(const Run& run) {
  return run.Values.Offset() + run.Values.Count() * int64_t{sizeof(StudioShort)};
}

}  // namespace

float DecodeRunValue(int32_t frame, const std::optional<RunStream>& stream, float scale) {
  if (!stream) return 0.0f;
  int32_t k = frame;
  auto run = ReadRun(stream->Image, stream->Offset);
  while (run && run->Head->Total != 0 && run->Head->Total <= k) {
    k -= run->Head->Total;
    run = ReadRun(stream->Image, Behind(*run));
  }
  if (!run || run->Head->Total == 0) return 0.0f;
  const int64_t number = k < run->Head->Valid ? k : run->Head->Valid - 1;
  return static_cast<float>(run->Values[number]->Value) * scale;
}

void RunCursor::Fill(const core::ImageView& image, int32_t frame, std::span<int16_t> values) {
  while (!values.empty()) {
    while (frame >= m_end) NextRun(image);
    const int32_t k = frame - m_start;
    const auto count = std::min(values.size(), static_cast<size_t>(m_end - frame));
    const auto valid = std::min(count, static_cast<size_t>(std::max(m_valid - k, 0)));
    if (valid > 0) std::memcpy(values.data(), m_values + k, valid * sizeof(int16_t));
    std::fill(values.begin() + static_cast<ptrdiff_t>(valid), values.begin() + static_cast<ptrdiff_t>(count),
              static_cast<int16_t>(m_held));
    values = values.subspan(count);
    frame += static_cast<int32_t>(count);
  }
}

void RunCursor::NextRun(const core::ImageView& image) {
  const auto run = ReadRun(image, m_next);
  if (!run) {
    m_damagedAt = m_next;
    End();
    return;
  }
  const int32_t total = run->Head->Total;
  if (total == 0) {
    End();
    return;
  }
  m_values = &*run->Values[0];
  m_valid = run->Head->Valid;
  m_held = run->Values[m_valid - 1]->Value;
  m_start = m_end;
  m_end = total < Forever - m_start ? m_start + total : Forever;
  m_next = Behind(*run);
}

void RunCursor::End() {
  m_start = m_end;
  m_end = Forever;
  m_valid = 0;
  m_held = 0;
}

}  // namespace tarnwick::model
