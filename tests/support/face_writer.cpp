#include <algorithm>
#include <cmath>

#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using namespace model;

StudioVertAnim ToRecord(const VertAnimDescription& anim) {
  StudioVertAnim record{};
  record.Vertex = anim.Vertex;
  record.Speed = anim.Speed;
  record.Side = anim.Side;
  const float position[] = {anim.PositionDelta.x, anim.PositionDelta.y, anim.PositionDelta.z};
  const float normal[] = {anim.NormalDelta.x, anim.NormalDelta.y, anim.NormalDelta.z};
  for (size_t axis = 0; axis < 3; ++axis) {
    record.PositionDelta.Words[axis] = HalfFloat(position[axis]);
    record.NormalDelta.Words[axis] = HalfFloat(normal[axis]);
  }
  return record;
}

StudioEyeball ToRecord(const EyeballDescription& eyeball) {
  StudioEyeball record{};
  record.Bone = eyeball.Bone;
  record.Origin = eyeball.Origin;
  record.ForwardOffset = eyeball.ForwardOffset;
  record.Radius = eyeball.Radius;
  record.Texture = eyeball.Texture;
  record.IrisScale = eyeball.IrisScale;
  record.Up = eyeball.Up;
  record.Forward = eyeball.Forward;
  for (size_t i = 0; i < 3; ++i) {
    record.UpperTarget[i] = eyeball.UpperTarget[i];
    record.LowerTarget[i] = eyeball.LowerTarget[i];
  }
  record.UpperLidFlexDesc = eyeball.UpperLidFlexDesc;
  record.LowerLidFlexDesc = eyeball.LowerLidFlexDesc;
  return record;
}

void WriteFlexes(const MeshDescription& mesh, size_t b, size_t m, size_t k, FileBuilder& mdl) {
  const auto flexes = mdl.Reserve<StudioFlex>(static_cast<int64_t>(mesh.Flexes.size()), PlaceName("flexes", {b, m, k}));
  for (int64_t f = 0; f < flexes.Count; ++f) {
    const FlexDescription& flex = mesh.Flexes[static_cast<size_t>(f)];
    const auto count = static_cast<int64_t>(flex.VertAnims.size());
    const std::string place = PlaceName("vert anims", {b, m, k, static_cast<size_t>(f)});
    int64_t offset = 0;
    if (flex.Wrinkles) {
      const auto anims = mdl.Reserve<StudioWrinkleVertAnim>(count, place);
      for (int64_t i = 0; i < count; ++i) anims[i] = {ToRecord(flex.VertAnims[static_cast<size_t>(i)]), 7};
      offset = anims.Offset;
      flexes[f].VertAnimKind = VertAnimWrinkle;
    } else {
      const auto anims = mdl.Reserve<StudioVertAnim>(count, place);
      for (int64_t i = 0; i < count; ++i) anims[i] = ToRecord(flex.VertAnims[static_cast<size_t>(i)]);
      offset = anims.Offset;
    }
    flexes[f].FlexDesc = flex.FlexDesc;
    flexes[f].Partner = flex.Partner;
    for (size_t t = 0; t < flex.Targets.size(); ++t) flexes[f].Targets[t] = flex.Targets[t];
    flexes[f].VertAnimCount = static_cast<int32_t>(count);
    flexes[f].VertAnimOffset = flexes.To(offset, f);
  }
  const std::string meshes = PlaceName("meshes", {b, m});
  auto& record = mdl.Record<StudioMesh>(meshes, static_cast<int64_t>(k));
  record.FlexCount = static_cast<int32_t>(flexes.Count);
  record.FlexOffset =
      static_cast<int32_t>(flexes.Offset - mdl.Place(meshes) - static_cast<int64_t>(k * sizeof(record)));
}

void WriteFlexRules(const ModelBuilder& model, FileBuilder& mdl) {
  const auto rules = ReserveInHeader<StudioFlexRule>(model.FlexRules, "flex rules", mdl, &StudioHeader::FlexRuleCount,
                                                     &StudioHeader::FlexRuleOffset);
  for (int64_t i = 0; i < rules.Count; ++i) {
    const FlexRuleDescription& rule = model.FlexRules[static_cast<size_t>(i)];
    const auto ops = mdl.Reserve<StudioFlexOp>(static_cast<int64_t>(rule.Ops.size()),
                                               PlaceName("flex ops", {static_cast<size_t>(i)}));
    for (int64_t op = 0; op < ops.Count; ++op) ops[op] = rule.Ops[static_cast<size_t>(op)];
    rules[i].FlexDesc = rule.FlexDesc;
    rules[i].OpCount = static_cast<int32_t>(ops.Count);
    rules[i].OpOffset = rules.To(ops.Offset, i);
  }
}

void WriteFlexControllers(const ModelBuilder& model, FileBuilder& mdl) {
  const auto controllers =
      ReserveInHeader<StudioFlexController>(model.FlexControllers, "flex controllers", mdl,
                                            &StudioHeader::FlexControllerCount, &StudioHeader::FlexControllerOffset);
  for (int64_t i = 0; i < controllers.Count; ++i) {
    const FlexControllerDescription& controller = model.FlexControllers[static_cast<size_t>(i)];
    const int32_t type = mdl.Text(controller.Type);
    const int32_t name = mdl.Text(controller.Name);
    controllers[i].TypeOffset = controllers.To(type, i);
    controllers[i].NameOffset = controllers.To(name, i);
    controllers[i].Minimum = controller.Minimum;
    controllers[i].Maximum = controller.Maximum;
  }
}

}  // namespace

uint16_t HalfFloat(float value) {
  const auto sign = static_cast<uint16_t>(std::signbit(value) ? 0x8000 : 0);
  const double size = std::min(std::abs(static_cast<double>(value)), 65504.0);
  // Below 2^-14 the steps stay as wide as there; above, each power of two has 1,024 steps.
  const int exponent = size < std::ldexp(1.0, -14) ? -14 : std::ilogb(size);
  const auto steps = static_cast<uint16_t>(std::lround(std::ldexp(size, 10 - exponent)));
  const int biased = (exponent + 14) * 1024 + steps;
  return static_cast<uint16_t>(sign | biased);
}

void WriteModelFace(const ModelDescription& model, size_t bodyPartIndex, size_t modelIndex, FileBuilder& mdl) {
  for (size_t k = 0; k < model.Meshes.size(); ++k) WriteFlexes(model.Meshes[k], bodyPartIndex, modelIndex, k, mdl);
  const auto eyeballs = mdl.Reserve<StudioEyeball>(static_cast<int64_t>(model.Eyeballs.size()),
                                                   PlaceName("eyeballs", {bodyPartIndex, modelIndex}));
  for (int64_t i = 0; i < eyeballs.Count; ++i) eyeballs[i] = ToRecord(model.Eyeballs[static_cast<size_t>(i)]);
  const std::string models = PlaceName("models", {bodyPartIndex});
  auto& record = mdl.Record<StudioModel>(models, static_cast<int64_t>(modelIndex));
  record.EyeballCount = static_cast<int32_t>(eyeballs.Count);
  record.EyeballOffset =
      static_cast<int32_t>(eyeballs.Offset - mdl.Place(models) - static_cast<int64_t>(modelIndex * sizeof(record)));
}

void WriteFace(const ModelBuilder& model, FileBuilder& mdl) {
  WriteNamesInHeader<StudioFlexDesc>(model.FlexDescs, "flex descs", mdl, &StudioHeader::FlexDescCount,
                                     &StudioHeader::FlexDescOffset);
  WriteFlexControllers(model, mdl);
  mdl.Align(4);
  WriteFlexRules(model, mdl);
  const auto mouths =
      ReserveInHeader<StudioMouth>(model.Mouths, "mouths", mdl, &StudioHeader::MouthCount, &StudioHeader::MouthOffset);
  for (int64_t i = 0; i < mouths.Count; ++i) {
    const MouthDescription& mouth = model.Mouths[static_cast<size_t>(i)];
    mouths[i] = StudioMouth{mouth.Bone, mouth.Forward, mouth.FlexDesc};
  }
}

}  // namespace tarnwick::tests
