#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "decompiler/job/job_context.h"
#include "model/bone_math_types.h"

namespace tarnwick::decompiler::sources {

/// The shortest plain decimal text that gives the same 32-bit float ("3.89", "-0.0625", never "1e-05"). What is no
/// finite number stands as 0, and is told once a job.
[[nodiscard]] std::string Number(JobContext& job, float value);
/// Three numbers with blanks between.
[[nodiscard]] std::string Numbers(JobContext& job, const Vec3& value);
/// Whether all three are 0, what many statements need not say.
[[nodiscard]] inline bool IsZero(const Vec3& value) {
  return value.x == 0 && value.y == 0 && value.z == 0;
}

/// An angle of `radians` in degrees, such that the degrees times pi / 180 round to the same float.
[[nodiscard]] std::string Degrees(JobContext& job, float radians);

/// `text` in double quotes, as one word of the script. A quote inside becomes an apostrophe, a line end or another
/// control byte a blank; that is told.
[[nodiscard]] std::string Quoted(JobContext& job, std::string_view text);

/// The name of a material as one word of the script. A compile takes the ending of an image away, so that a name which
/// really ends so gets one more.
[[nodiscard]] std::string QuotedMaterial(JobContext& job, std::string_view material);

/// The name of bone `index`; nothing, told, if the model has no such bone. `user` is who names it, at `userOffset`.
[[nodiscard]] std::optional<std::string_view> BoneName(JobContext& job, std::string_view user, int64_t userOffset,
                                                       int64_t index);

/// The frame that lies at `part` (0 to 1) of `frames` frames, as a script has it: a whole number where one gives the
/// part back, else one with a fraction. `exact` is cleared if none does.
[[nodiscard]] std::string FrameAt(float part, int32_t frames, bool& exact);

/// The words for what a model or a bone is to traces ("\"solid\" \"grate\""); nothing where some of it has no word.
[[nodiscard]] std::optional<std::string> ContentsWords(int32_t contents);

}  // namespace tarnwick::decompiler::sources
