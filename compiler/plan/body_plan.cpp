#include "compiler/plan/body_plan.h"

#include <algorithm>
#include <cmath>

#include "compiler/plan/option_values.h"

namespace tarnwick::compiler {

using qc::Key;
using qc::Option;

namespace {

int32_t FrameOf(const Option& option, size_t i) {
  const double value = option.Number(i);
  return std::isfinite(value) ? static_cast<int32_t>(std::clamp(value, -1e9, 1e9)) : 0;
}
int32_t SourceAt(const Option& option, size_t i) {
  return i < option.Arguments.size() ? option.Arguments[i].Source : -1;
}

void ApplyBodyOptions(const std::vector<Option>& options, SourceUse& use) {
  for (const Option& option : options) {
    if (option.Kind == Key::Reverse) use.Reverse = true;
    if (option.Kind == Key::Scale && NumberAt(option, 0) != 0) use.Scale = use.Scale * NumberAt(option, 0);
  }
}

PlanModel ModelOf(const qc::Argument& mesh, const std::vector<Option>& options, const SourceUse& use) {
  PlanModel model{std::string(mesh.Text), UseOf(mesh, use), {}};
  ApplyBodyOptions(options, model.Mesh);
  return model;
}

PlanEyelid EyelidOf(const Option& line) {
  PlanEyelid lid;
  lid.At = line.At;
  lid.Name = TextAt(line, 0);
  lid.Source = SourceAt(line, 1);
  for (const Option& option : line.Options) {
    switch (option.Kind) {
      case Key::Lowerer:
        lid.LowererFrame = FrameOf(option, 0);
        lid.LowererHeight = NumberAt(option, 1);
        break;
      case Key::Neutral:
        lid.NeutralFrame = FrameOf(option, 0);
        lid.NeutralHeight = NumberAt(option, 1);
        break;
      case Key::Raiser:
        lid.RaiserFrame = FrameOf(option, 0);
        lid.RaiserHeight = NumberAt(option, 1);
        break;
      case Key::Split:
        lid.Split = NumberAt(option, 0);
        break;
      case Key::Eyeball:
        lid.Eyeball = TextAt(option, 0);
        break;
      default:
        break;
    }
  }
  return lid;
}

PlanFlexFile FlexFileOf(const Option& line) {
  PlanFlexFile file{line.At, SourceAt(line, 0), {}};
  for (const Option& option : line.Options) {
    PlanShape shape;
    shape.At = option.At;
    shape.Name = TextAt(option, 0);
    shape.What = option.Kind == Key::FlexPair ? PlanShape::Kind::Pair
                 : option.Kind == Key::Flex   ? PlanShape::Kind::Flex
                                              : PlanShape::Kind::Default;
    if (option.Kind == Key::FlexPair) shape.Split = NumberAt(option, 1);
    shape.IsFrameless = true;
    for (const Option& more : option.Options) {
      if (more.Kind == Key::Frame) {
        shape.Frame = FrameOf(more, 0);
        shape.IsFrameless = false;
      }
      if (more.Kind == Key::Position) shape.Position = NumberAt(more, 0);
      if (more.Kind == Key::Decay) shape.Decay = NumberAt(more, 0);
      if (more.Kind == Key::Split) shape.Split = NumberAt(more, 0);
    }
    file.Shapes.push_back(std::move(shape));
  }
  return file;
}

PlanFlexController ControllerOf(const Option& line) {
  PlanFlexController controller;
  controller.At = line.At;
  controller.Group = TextAt(line, 0);
  for (size_t i = 1; i < line.Arguments.size(); ++i) controller.Names.push_back(TextAt(line, i));
  for (const Option& option : line.Options) {
    if (option.Kind != Key::Range) continue;
    controller.Minimum = NumberAt(option, 0);
    controller.Maximum = NumberAt(option, 1);
  }
  return controller;
}

void AddFaceLine(const Option& line, std::vector<PlanFaceLine>& face) {
  switch (line.Kind) {
    case Key::Eyeball: {
      PlanEyeball eye;
      eye.At = line.At;
      eye.Name = TextAt(line, 0);
      eye.Bone = TextAt(line, 1);
      eye.Center = VecAt(line, 2);
      eye.Material = TextAt(line, 5);
      eye.Diameter = NumberAt(line, 6);
      eye.Angle = NumberAt(line, 7);
      eye.IrisMaterial = TextAt(line, 8);
      eye.IrisScale = NumberAt(line, 9);
      face.emplace_back(std::move(eye));
      break;
    }
    case Key::Eyelid:
      face.emplace_back(EyelidOf(line));
      break;
    case Key::Mouth:
      face.emplace_back(PlanMouth{line.At, FrameOf(line, 0), TextAt(line, 1), TextAt(line, 2), VecAt(line, 3)});
      break;
    case Key::FlexFile:
      face.emplace_back(FlexFileOf(line));
      break;
    case Key::FlexController:
      face.emplace_back(ControllerOf(line));
      break;
    case Key::LocalVar: {
      PlanLocalVars vars{line.At, {}};
      for (size_t i = 0; i < line.Arguments.size(); ++i) vars.Names.push_back(TextAt(line, i));
      face.emplace_back(std::move(vars));
      break;
    }
    case Key::Rule:
      face.emplace_back(PlanFlexRule{line.At, line.Rule});
      break;
    case Key::SphereNormals:
      face.emplace_back(PlanSphereNormals{line.At, TextAt(line, 0), VecAt(line, 1)});
      break;
    case Key::VcaFile:
      face.emplace_back(PlanVcaFile{line.At, SourceAt(line, 0)});
      break;
    default:
      break;
  }
}

}  // namespace

SourceUse UseOf(const qc::Argument& argument, const SourceUse& use) {
  SourceUse own = use;
  own.Source = argument.Source;
  own.Name = std::string(argument.Text);
  own.At = argument.At;
  return own;
}

PlanBodyPart ReadBodyPart(const qc::Statement& statement, const SourceUse& use) {
  PlanBodyPart part{statement.At, std::string(statement.Arguments[0].Text), {}};
  if (statement.Kind == qc::Command::BodyGroup) {
    for (const Option& option : statement.Options) {
      if (option.Kind == Key::Blank) {
        part.Models.emplace_back();
      } else if (option.Kind == Key::Studio && !option.Arguments.empty()) {
        part.Models.push_back(ModelOf(option.Arguments[0], option.Options, use));
      }
    }
    return part;
  }
  if (statement.Arguments.size() < 2) return part;
  part.Models.push_back(ModelOf(statement.Arguments[1], statement.Options, use));
  for (const Option& option : statement.Options) AddFaceLine(option, part.Models.back().Face);
  return part;
}

PlanLod ReadLod(const qc::Statement& statement, const SourceUse& use) {
  PlanLod lod;
  lod.At = statement.At;
  lod.Shadow = statement.Kind == qc::Command::ShadowLod;
  lod.Threshold = lod.Shadow ? -1 : static_cast<float>(statement.Number(0));
  for (const Option& option : statement.Options) {
    switch (option.Kind) {
      case Key::ReplaceModel: {
        if (option.Arguments.size() < 2) break;
        PlanReplacement replacement{option.At, TextAt(option, 0), UseOf(option.Arguments[1], use)};
        ApplyBodyOptions(option.Options, replacement.Mesh);
        lod.Replacements.push_back(std::move(replacement));
        break;
      }
      case Key::RemoveModel:
        lod.Replacements.push_back({option.At, TextAt(option, 0), {}});
        break;
      case Key::ReplaceMaterial:
        lod.Materials.emplace_back(TextAt(option, 0), TextAt(option, 1));
        break;
      case Key::RemoveMesh:
        lod.RemovedMeshes.push_back(TextAt(option, 0));
        break;
      case Key::ReplaceBone:
        lod.Bones.emplace_back(TextAt(option, 0), TextAt(option, 1));
        break;
      case Key::BoneTreeCollapse:
        lod.CollapsedTrees.push_back(TextAt(option, 0));
        break;
      case Key::NoFacial:
        lod.Faces = false;
        break;
      case Key::Facial:
        lod.Faces = true;
        break;
      default:
        break;
    }
  }
  return lod;
}

}  // namespace tarnwick::compiler
