#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <tuple>

#include "core/same_bytes.h"
#include "model/bone_math.h"
#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/face_records.h"
#include "model/model_flexes.h"
#include "model/vertex_file.h"

namespace tarnwick::model {

namespace {

constexpr RecordField ControllerFields[] = {
    {"range of a controller", offsetof(StudioFlexController, Minimum), 2, TextGrain}};
constexpr RecordField FlexFields[] = {
    {"descriptor of a flex", offsetof(StudioFlex, FlexDesc)},
    {"targets of a flex", offsetof(StudioFlex, Targets), 4, TextGrain},
    {"partner of a flex", offsetof(StudioFlex, Partner)},
};
constexpr RecordField EyeballFields[] = {
    {"bone of an eye", offsetof(StudioEyeball, Bone)},
    {"origin of an eye", offsetof(StudioEyeball, Origin), 3, 1e-4},
    {"angle of an eye", offsetof(StudioEyeball, ForwardOffset), 1, 1e-4},
    {"radius of an eye", offsetof(StudioEyeball, Radius), 1, 1e-4},
    {"axes of an eye", offsetof(StudioEyeball, Up), 6, 1e-4},
    {"iris of an eye", offsetof(StudioEyeball, IrisScale), 1, 1e-4},
    {"flexes of an eye's lids", offsetof(StudioEyeball, UpperFlexDescs), 6},
    {"targets of an eye's lids", offsetof(StudioEyeball, UpperTarget), 6, 1e-4},
    {"lids of an eye", offsetof(StudioEyeball, UpperLidFlexDesc), 2},
};
constexpr RecordField MouthFields[] = {
    {"bone of a mouth", offsetof(StudioMouth, Bone)},
    {"axis of a mouth", offsetof(StudioMouth, Forward), 3, 1e-4},
    {"flex of a mouth", offsetof(StudioMouth, FlexDesc)},
};

/// What a half-float can lose on its way through six decimals, a step at values below 2.
constexpr double DeltaGrain = 1.0 / 1024;

/// A vertex under a flex: which one it is, by what it is and not by its number, and where it moves.
struct MovedVertex {
  VvdVertex Vertex;
  Vec3 Position;
  Vec3 Normal;
  uint8_t Speed;
  uint8_t Side;

  /// Of numbers as a source has them: what rounding takes must not change the order.
  auto Key() const {
    const VvdVertex& v = Vertex;
    const auto typed = [](float value) { return std::round(double{value} * 1e6); };
    return std::tuple(typed(v.Position.x), typed(v.Position.y), typed(v.Position.z), typed(v.U), typed(v.V),
                      typed(v.Normal.x), typed(v.Normal.y), typed(v.Normal.z));
  }
};

/// The vertices that `flex` moves, sorted. Nothing if its table does not lie inside the file.
std::optional<std::vector<MovedVertex>> MovedVertices(ModelReader& reader, const ModelFlexes& flexes,
                                                      const core::Record<StudioFlex>& flex,
                                                      const MeshVertexData& vertices) {
  const int64_t size = flexes.VertAnimSizeOf(*flex);
  const core::ImageView view = reader.Model.View();
  const int64_t offset = flex.Offset() + flex->VertAnimOffset;
  if (!view.Fits(offset, flex->VertAnimCount, size) || !reader.Spend(flex->VertAnimCount * RecordCost)) {
    return std::nullopt;
  }
  std::vector<MovedVertex> moved;
  moved.reserve(static_cast<size_t>(flex->VertAnimCount));
  for (int64_t i = 0; i < flex->VertAnimCount; ++i) {
    const auto anim = view.At<StudioVertAnim>(offset + i * size);
    const VvdVertex* vertex = anim ? GetMeshVertex(vertices, static_cast<uint16_t>((*anim)->Vertex)) : nullptr;
    if (vertex == nullptr) continue;
    MovedVertex one{*vertex, {}, {}, (*anim)->Speed, (*anim)->Side};
    DecodeVec48((*anim)->PositionDelta, one.Position);
    DecodeVec48((*anim)->NormalDelta, one.Normal);
    moved.push_back(one);
  }
  std::stable_sort(moved.begin(), moved.end(), [](const auto& a, const auto& b) { return a.Key() < b.Key(); });
  // A vertex that stands there twice is one.
  const auto same = [](const auto& a, const auto& b) {
    return core::HasSameBytes(a.Vertex, b.Vertex) && core::HasSameBytes(a.Position, b.Position) &&
           core::HasSameBytes(a.Normal, b.Normal);
  };
  moved.erase(std::unique(moved.begin(), moved.end(), same), moved.end());
  return moved;
}

void CompareMoved(const ComparedModels& models, const std::vector<MovedVertex>& first,
                  const std::vector<MovedVertex>& second, const std::string& place) {
  models.Differences.Whole(
      ModelTable::Faces, "vertices of a flex", [&] { return place; }, static_cast<int64_t>(first.size()),
      static_cast<int64_t>(second.size()));
  const auto floats = [](const Vec3& v) { return std::array{float{v.x}, float{v.y}, float{v.z}}; };
  for (size_t i = 0; i < std::min(first.size(), second.size()); ++i) {
    const MovedVertex& a = first[i];
    const MovedVertex& b = second[i];
    const auto where = [&] {
      return place + ", the vertex at " + DifferenceList::NumberText(floats(a.Vertex.Position));
    };
    models.Differences.Numbers(ModelTable::Faces, "vertex of a flex", where, floats(a.Vertex.Position),
                               floats(b.Vertex.Position), TextGrain);
    models.Differences.Numbers(ModelTable::Faces, "position under a flex", where, floats(a.Position),
                               floats(b.Position), DeltaGrain);
    models.Differences.Numbers(ModelTable::Faces, "normal under a flex", where, floats(a.Normal), floats(b.Normal),
                               DeltaGrain);
    models.Differences.Steps(ModelTable::Faces, "speed of a vertex", where, a.Speed, b.Speed);
    models.Differences.Steps(ModelTable::Faces, "side of a vertex", where, a.Side, b.Side);
  }
}

void CompareModelFaces(const ComparedModels& models, const core::Record<StudioModel>& first,
                       const core::Record<StudioModel>& second, const std::string& place) {
  const auto where = [&] { return place; };
  CompareTables<StudioEyeball>(
      models, ModelTable::Faces, "eyes", where, {first.Offset() + first->EyeballOffset, first->EyeballCount},
      {second.Offset() + second->EyeballOffset, second->EyeballCount}, [&](const auto& a, const auto& b, int64_t i) {
        const auto eye = [&] { return place + ", eye " + std::to_string(i); };
        models.Differences.Text(ModelTable::Faces, "name of an eye", eye, TextOf(models.First, a, a->NameOffset),
                                TextOf(models.Second, b, b->NameOffset));
        CompareFields(models.Differences, ModelTable::Faces, EyeballFields, *a, *b, eye);
      });
  const auto descriptors = [](const ModelReader& reader) {
    return static_cast<size_t>(std::max(0, int32_t{reader.Model.Header()->FlexDescCount}));
  };
  const size_t count = descriptors(models.First);
  // Descriptors are compared elsewhere; flexes are gathered by them, which costs a list each.
  if (count != descriptors(models.Second) || !models.First.Spend(static_cast<int64_t>(count) * RecordCost)) return;
  const auto a = GatherFlexes(models.First, first, count);
  const auto b = GatherFlexes(models.Second, second, count);
  if (!a || !b) return;
  for (size_t d = 0; d < count && !models.IsStopped(); ++d) {
    const auto& one = a->ByDescriptor[d];
    const auto& other = b->ByDescriptor[d];
    const auto descriptor = [&] { return place + ", flex descriptor " + std::to_string(d); };
    models.Differences.Whole(ModelTable::Faces, "flexes", descriptor, static_cast<int64_t>(one.size()),
                             static_cast<int64_t>(other.size()));
    for (size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
      models.Differences.Whole(ModelTable::Faces, "mesh of a flex", descriptor, one[i].Mesh, other[i].Mesh);
      CompareFields(models.Differences, ModelTable::Faces, FlexFields, *one[i].Flex, *other[i].Flex, descriptor);
      const auto firstVertices = GetMeshVertexData(models.First, a->Meshes[one[i].Mesh]);
      const auto secondVertices = GetMeshVertexData(models.Second, b->Meshes[other[i].Mesh]);
      if (!firstVertices || !secondVertices) continue;
      const auto moved = MovedVertices(models.First, *a, one[i].Flex, *firstVertices);
      const auto otherMoved = MovedVertices(models.Second, *b, other[i].Flex, *secondVertices);
      if (moved && otherMoved) CompareMoved(models, *moved, *otherMoved, descriptor());
    }
  }
}

void CompareControllers(const ComparedModels& models, const StudioHeader& a, const StudioHeader& b) {
  DifferenceList& differences = models.Differences;
  CompareTables<StudioFlexDesc>(
      models, ModelTable::Faces, "flex descriptors", {a.FlexDescOffset, a.FlexDescCount},
      {b.FlexDescOffset, b.FlexDescCount}, [&](const auto& one, const auto& other, int64_t i) {
        differences.Text(
            ModelTable::Faces, "name of a descriptor", [&] { return "flex descriptor " + std::to_string(i); },
            TextOf(models.First, one, one->NameOffset), TextOf(models.Second, other, other->NameOffset));
      });
  CompareTables<StudioFlexController>(
      models, ModelTable::Faces, "controllers", {a.FlexControllerOffset, a.FlexControllerCount},
      {b.FlexControllerOffset, b.FlexControllerCount}, [&](const auto& one, const auto& other, int64_t i) {
        const auto where = [&] { return Place("controller", TextOf(models.First, one, one->NameOffset), i); };
        differences.Text(ModelTable::Faces, "name of a controller", where, TextOf(models.First, one, one->NameOffset),
                         TextOf(models.Second, other, other->NameOffset));
        differences.Text(ModelTable::Faces, "type of a controller", where, TextOf(models.First, one, one->TypeOffset),
                         TextOf(models.Second, other, other->TypeOffset));
        CompareFields(differences, ModelTable::Faces, ControllerFields, *one, *other, where);
      });
  CompareTables<StudioFlexRule>(
      models, ModelTable::Faces, "rules", {a.FlexRuleOffset, a.FlexRuleCount}, {b.FlexRuleOffset, b.FlexRuleCount},
      [&](const auto& one, const auto& other, int64_t i) {
        const auto where = [&] { return "rule " + std::to_string(i); };
        differences.Whole(ModelTable::Faces, "descriptor of a rule", where, one->FlexDesc, other->FlexDesc);
        CompareTables<StudioFlexOp>(
            models, ModelTable::Faces, "operations of a rule", where, {one.Offset() + one->OpOffset, one->OpCount},
            {other.Offset() + other->OpOffset, other->OpCount}, [&](const auto& x, const auto& y, int64_t) {
              differences.Whole(ModelTable::Faces, "operation of a rule", where, x->Op, y->Op);
              if (x->Op == FlexOpConstant && y->Op == FlexOpConstant) {
                const int32_t bits[] = {x->Operand, y->Operand};
                const auto constants = std::bit_cast<std::array<float, 2>>(bits);
                differences.Numbers(ModelTable::Faces, "constant of a rule", where, {&constants[0], 1},
                                    {&constants[1], 1}, TextGrain);
              } else {
                differences.Whole(ModelTable::Faces, "operand of a rule", where, x->Operand, y->Operand);
              }
            });
      });
  CompareTables<StudioMouth>(models, ModelTable::Faces, "mouths", {a.MouthOffset, a.MouthCount},
                             {b.MouthOffset, b.MouthCount}, [&](const auto& one, const auto& other, int64_t i) {
                               CompareFields(differences, ModelTable::Faces, MouthFields, *one, *other,
                                             [&] { return "mouth " + std::to_string(i); });
                             });
}

}  // namespace

void CompareFaces(const ComparedModels& models) {
  const auto a = models.First.Model.Header();
  const auto b = models.Second.Model.Header();
  CompareControllers(models, *a, *b);
  const auto nowhere = [] { return std::string(); };
  CompareTables<StudioBodyPart>(
      models, ModelTable::Bodies, "body parts", nowhere, {a->BodyPartOffset, a->BodyPartCount},
      {b->BodyPartOffset, a->BodyPartCount == b->BodyPartCount ? b->BodyPartCount : 0},
      [&](const auto& first, const auto& second, int64_t part) {
        const auto models1 =
            models.First.Table<StudioModel>("model table", first.Offset() + first->ModelOffset, first->ModelCount);
        const auto models2 =
            models.Second.Table<StudioModel>("model table", second.Offset() + second->ModelOffset, second->ModelCount);
        if (!models1 || !models2) return;
        for (int64_t i = 0; i < std::min(models1->Count(), models2->Count()); ++i) {
          CompareModelFaces(models, (*models1)[i], (*models2)[i],
                            "body part " + std::to_string(part) + ", model " + std::to_string(i));
        }
      });
}

}  // namespace tarnwick::model
