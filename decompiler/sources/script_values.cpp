#include "decompiler/sources/script_values.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "core/number_text.h"
#include "smd/image_ending.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr size_t UsualNumber = 16;  // of letters, a blank among them

/// Whether a word in quotes cannot hold it.
bool IsUnspoken(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '"';
}

float ToRadians(double degrees) {
  return static_cast<float>(degrees * (std::numbers::pi / 180));
}

}  // namespace

std::string Number(JobContext& job, float value) {
  if (!std::isfinite(value)) {
    job.CleanOnce("numbers that are not finite", "stand as 0");
    return "0";
  }
  return core::ShortestDecimal(value);
}

std::string Numbers(JobContext& job, const Vec3& value) {
  std::string text;
  text.reserve(3 * UsualNumber);
  text.append(Number(job, value.x)).append(" ").append(Number(job, value.y));
  text.append(" ").append(Number(job, value.z));
  return text;
}

std::string Degrees(JobContext& job, float radians) {
  if (!std::isfinite(radians)) return Number(job, radians);
  const double exact = radians * (180 / std::numbers::pi);
  const auto nearest = static_cast<float>(exact);
  for (const float candidate : {nearest, std::nextafter(nearest, 0.0f), std::nextafter(nearest, 2 * nearest)}) {
    if (ToRadians(candidate) == radians) return core::ShortestDecimal(candidate);
  }
  return core::ShortestDecimal(exact);
}

std::string Quoted(JobContext& job, std::string_view text) {
  std::string quoted;
  quoted.reserve(text.size() + 2);
  quoted.append("\"").append(text).append("\"");
  const auto first = quoted.begin() + 1, behind = quoted.end() - 1;
  if (std::any_of(first, behind, IsUnspoken)) {
    std::transform(first, behind, first, [](char c) { return c == '"' ? '\'' : IsUnspoken(c) ? ' ' : c; });
    job.CleanOnce("names with quotes or control characters", "stand without them");
  }
  return quoted;
}

std::string QuotedMaterial(JobContext& job, std::string_view material) {
  return Quoted(job, smd::EndsAsImage(material) ? std::string(material) + ".tga" : std::string(material));
}

std::optional<std::string_view> BoneName(JobContext& job, std::string_view user, int64_t userOffset, int64_t index) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return std::nullopt;
  if (skeleton->Bones.Holds(index)) return skeleton->Names[static_cast<size_t>(index)];
  job.Damaged(job.Model.Mdl.Path(), user, userOffset,
              "names bone " + std::to_string(index) + " of " + std::to_string(skeleton->Count()));
  return std::nullopt;
}

std::string FrameAt(float part, int32_t frames, bool& exact) {
  if (frames <= 1 || !std::isfinite(part)) {
    exact = exact && (part == 0 || !std::isfinite(part));
    return "0";
  }
  const auto last = static_cast<float>(frames - 1);
  const float frame = part * last;
  const float above = std::nextafter(frame, std::numeric_limits<float>::max());
  const float below = std::nextafter(frame, std::numeric_limits<float>::lowest());
  for (const float candidate : {std::round(frame), frame, above, below}) {
    if (candidate / last == part) return core::ShortestDecimal(candidate);
  }
  exact = false;
  return core::ShortestDecimal(frame);
}

std::optional<std::string> ContentsWords(int32_t contents) {
  constexpr int32_t Solid = 1, Grate = 8;
  if ((contents & ~(Solid | Grate)) != 0) return std::nullopt;
  if (contents == 0) return "\"notsolid\"";
  std::string words = (contents & Solid) != 0 ? "\"solid\"" : "";
  if ((contents & Grate) != 0) words += words.empty() ? "\"grate\"" : " \"grate\"";
  return words;
}

}  // namespace tarnwick::decompiler::sources
