#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick::model {

/// A part of a model that two of them are compared by.
enum class ModelTable {
  Header,
  Bones,
  Poses,  // where bones stand at rest
  ProceduralBones,
  Boxes,
  Attachments,
  IkChains,
  PoseParameters,
  Materials,
  Skins,
  Bodies,
  Levels,
  Vertices,
  Triangles,
  Animations,
  Frames,  // where bones stand in each frame of each animation
  Sequences,
  Events,
  Layers,
  Faces,
  Physics,
};

/// The table's name for people: "bones".
std::string_view TableName(ModelTable table);

/// One way in which two models differ, in however many places.
struct ModelDifference {
  ModelTable Table = ModelTable::Header;
  std::string What = {};  // what of the table's entries: "position"
  std::string Where =
      {};  // the entry: "bone hand, frame 12"; of a number that in which it differs most, else the first
  std::string First = {};  // the values there
  std::string Second = {};
  size_t Count = 1;         // places
  double Largest = 0;       // the largest difference of a number; 0 for what is none
  bool IsRounding = false;  // no place differs by more than rounding can make
  /// Why the sources cannot hold the value, where a compile derives it of what the model does not keep; else empty.
  std::string_view Derived = {};

  /// More than rounding, of what the sources should have held.
  bool IsReal() const { return !IsRounding && Derived.empty(); }
  bool operator==(const ModelDifference&) const = default;
};

/// The difference in one line:
///     frames: position differs in 12 places by up to 0.0031 (rounding), most in animation walk, frame 3, bone hand: 1
///     and 1.0031
std::string DifferenceLine(const ModelDifference& difference);

}  // namespace tarnwick::model
