#include "model/sequence_blend.h"

#include <algorithm>
#include <cmath>

#include "model/script_records.h"
#include "model/truncate.h"

namespace tarnwick::model {

namespace {

/// A place on a blend axis: between animation `Index` and the next one, `Weight` of the way.
struct AxisPosition {
  int64_t Index = 0;
  float Weight = 0;
};

/// More blends than any sequence has on an axis; the search among the keys of a damaged one ends here.
constexpr int64_t MostBlendsOnAxis = 4096;

float ClampToOne(float value) {
  return value < 0 ? 0 : value > 1 ? 1 : value;
}

/// Pose key `index` of an axis, whose keys begin at entry `axis` times columns of the sequence's table.
std::optional<float> PoseKey(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence, int axis,
                             int64_t index) {
  const int64_t entry = int64_t{axis} * sequence->BlendSize[0] + index;
  return model.View().Value<float>(sequence.Offset() + sequence->PoseKeyOffset + entry * int64_t{sizeof(float)});
}

/// The place of the normalised pose value `t` among the keys of an axis. Nothing if the table does not hold them.
std::optional<AxisPosition> PositionAmongKeys(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence,
                                              int axis, float t) {
  AxisPosition position;
  while (true) {
    const auto key = PoseKey(model, sequence, axis, position.Index);
    const auto next = PoseKey(model, sequence, axis, position.Index + 1);
    if (!key || !next || position.Index > MostBlendsOnAxis) return std::nullopt;
    position.Weight = (t - *key) / (*next - *key);
    if (position.Index >= int64_t{sequence->BlendSize[axis]} - 2 || position.Weight <= 1) break;
    ++position.Index;
  }
  position.Weight = ClampToOne(position.Weight);
  return position;
}

AxisPosition PositionOnAxis(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence, int axis,
                            const PoseValues& poses) {
  const int64_t number = sequence->PoseParameter[axis];
  const auto header = model.Header();
  const auto table = model.View().Array<StudioPoseParameter>(header->PoseParameterOffset, header->PoseParameterCount);
  if (!table || !table->Holds(number)) return {};
  const StudioPoseParameter& pose = *(*table)[number];
  const float start = pose.Start;
  const float end = pose.End;
  float value = number < static_cast<int64_t>(poses.size()) ? poses[static_cast<size_t>(number)] : 0.0f;
  if (pose.Wrap != 0) {
    const float half = pose.Wrap - ((start + end) / 2 + pose.Wrap / 2);
    value -= std::floor((value + half) / pose.Wrap) * pose.Wrap;
  }
  if (sequence->PoseKeyOffset != 0) {
    return PositionAmongKeys(model, sequence, axis, (end - start) * value + start).value_or(AxisPosition{});
  }
  const float low = (sequence->PoseStart[axis] - start) / (end - start);
  const float high = (sequence->PoseEnd[axis] - start) / (end - start);
  AxisPosition position{0, ClampToOne((value - low) / (high - low))};
  const int64_t blends = sequence->BlendSize[axis];
  if (blends > 2) {
    const int64_t steps = blends - 1;
    const float scaled = position.Weight * static_cast<float>(steps);
    position.Index = std::clamp<int64_t>(TruncateToInt(scaled), 0, steps - 1);
    position.Weight = scaled - static_cast<float>(position.Index);
  }
  return position;
}

/// The sum of what `valueOf` gives for the four animations round the blend position, each by its weight.
template <typename ValueOf>
float Weigh(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence, const PoseValues& poses,
            ValueOf valueOf) {
  const auto header = model.Header();
  const auto animations = model.View().Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  if (!animations || animations->Count() == 0) return 0;
  const AxisPosition p0 = PositionOnAxis(model, sequence, 0, poses);
  const AxisPosition p1 = PositionOnAxis(model, sequence, 1, poses);
  const float weights[2][2] = {{(1 - p0.Weight) * (1 - p1.Weight), p0.Weight * (1 - p1.Weight)},
                               {(1 - p0.Weight) * p1.Weight, p0.Weight * p1.Weight}};
  float sum = 0;
  for (int64_t y = 0; y < 2; ++y) {
    for (int64_t x = 0; x < 2; ++x) {
      if (!(weights[y][x] > 0)) continue;
      const auto animation = BlendAnimation(model, sequence, p0.Index + x, p1.Index + y);
      if (animation) sum += weights[y][x] * valueOf(*(*animations)[*animation]);
    }
  }
  return sum;
}

}  // namespace

std::optional<int64_t> BlendAnimation(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence, int64_t x,
                                      int64_t y) {
  const int64_t columns = sequence->BlendSize[0];
  const int64_t rows = sequence->BlendSize[1];
  const int64_t entry = std::min(y, rows - 1) * columns + std::min(x, columns - 1);
  const auto number =
      model.View().Value<int16_t>(sequence.Offset() + sequence->BlendOffset + entry * int64_t{sizeof(int16_t)});
  if (!number) return std::nullopt;
  return *number >= 0 && *number < model.Header()->AnimCount ? *number : 0;
}

float SequenceFps(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence, const PoseValues& poses) {
  return Weigh(model, sequence, poses, [](const StudioAnimDesc& animation) { return float{animation.Fps}; });
}

int32_t SequenceLastFrame(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence,
                          const PoseValues& poses) {
  float frames = Weigh(model, sequence, poses,
                       [](const StudioAnimDesc& animation) { return static_cast<float>(animation.FrameCount); });
  if (frames > 1) frames -= 1;
  return TruncateToInt(frames + 0.01f);
}

}  // namespace tarnwick::model
