#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "model/face_records.h"

namespace tarnwick::compiler {

struct BuiltFlexController {
  std::string Type, Name;
  float Minimum = 0, Maximum = 1;
};
struct BuiltFlexRule {
  int32_t Descriptor = 0;
  std::vector<model::StudioFlexOp> Operations;
};
/// A slider: a controller, or a left and a right one.
struct BuiltFlexControl {
  std::string Name;
  int32_t Controllers[2] = {0, -1};  // the left, the right; -1 for none
};
/// The record of a flex and its vertex animations; offsets are filled in when the file is written.
struct BuiltFlex {
  model::StudioFlex Record = {};
  std::vector<model::StudioVertAnim> VertAnims;
};
/// The flexes of each mesh of a model, and its eyeballs.
struct BuiltModelFace {
  std::vector<std::vector<BuiltFlex>> MeshFlexes;
  std::vector<model::StudioEyeball> Eyeballs;
};

struct BuiltFace {
  std::vector<std::string> Descriptors;
  std::vector<BuiltFlexController> Controllers;
  std::vector<BuiltFlexRule> Rules;
  std::vector<BuiltFlexControl> Controls;
  std::vector<model::StudioMouth> Mouths;
  std::vector<int32_t> MouthNumbers;  // as typed, rising; one for each mouth
  /// Models in the order of body parts and their models; empty, or one for each.
  std::vector<BuiltModelFace> Models;
};

}  // namespace tarnwick::compiler
