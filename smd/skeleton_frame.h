#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "core/text_writer.h"
#include "core/vector_code.h"
#include "smd/smd_values.h"

namespace tarnwick::smd {

/// Which numbers of a line read as the very floats that they are: those have more than six decimals where they must.
struct ExactNumbers {
  bool Position = false;
  bool Rotation = false;
};

/// The text of a skeleton's pose, one line "%3d %f %f %f %f %f %f\n" a bone. What has not changed is carried over from
/// pose to pose: for each pose the bones are told in order, each kept or with new numbers.
///
///     frame.Begin();
///     for (...) changed ? frame.Line(&position, &rotation) : frame.Keep();
///     frame.Write(writer);
///     frame.Write(writer);  // the same pose again
class SkeletonFrame {
 public:
  /// Each level of vector code, which is at most that of the processor, writes the same text.
  explicit SkeletonFrame(size_t boneCount, core::VectorLevel level = core::HighestVectorLevel());

  /// Begins the next pose.
  void Begin();
  /// The next bone's line is that of the pose before.
  void Keep() { ++m_bone; }
  /// The next bone's line holds these numbers; nullptr for numbers that are those of the pose before.
  void Line(const Triple* position, const Triple* rotation, ExactNumbers exact = {});
  /// Writes the lines of the pose, all of whose bones are told.
  void Write(core::TextWriter& writer);

 private:
  /// Where the parts of a bone's line lie in the text, and how many of their numbers are not finite.
  struct Place {
    size_t Line = 0;      // the bone's number and position
    size_t Rotation = 0;  // the rotation and the line's end
    uint8_t OddPositions = 0;
    uint8_t OddRotations = 0;
  };

  void CopyKept();

  bool m_hasVectors;
  size_t m_bone = 0;            // the next one
  size_t m_firstKept = 0;       // kept bones from here on are not copied yet
  size_t m_nonFinite = 0;       // numbers of the pose
  size_t m_length = 0;          // of m_text
  std::vector<Place> m_places;  // one behind the last bone too; of m_text for bones that are told, else of m_previous
  std::unique_ptr<char[]> m_text;
  std::unique_ptr<char[]> m_previous;
};

}  // namespace tarnwick::smd
