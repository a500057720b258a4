#include <cmath>

#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using model::EulerAngles;
using model::Matrix3x4;
using model::Quat;
using model::StudioHeader;

Quat ToQuat(const EulerAngles& angles) {
  const double sr = std::sin(angles.x / 2.0), cr = std::cos(angles.x / 2.0);
  const double sp = std::sin(angles.y / 2.0), cp = std::cos(angles.y / 2.0);
  const double sy = std::sin(angles.z / 2.0), cy = std::cos(angles.z / 2.0);
  return {static_cast<float>(sr * cp * cy - cr * sp * sy), static_cast<float>(cr * sp * cy + sr * cp * sy),
          static_cast<float>(cr * cp * sy - sr * sp * cy), static_cast<float>(cr * cp * cy + sr * sp * sy)};
}

Matrix3x4 ToMatrix(const BoneDescription& bone) {
  const auto [x, y, z, w] = ToQuat(bone.Angles);
  const auto& p = bone.Position;
  return {{1 - 2 * y * y - 2 * z * z, 2 * x * y - 2 * w * z, 2 * x * z + 2 * w * y, p.x,  //
           2 * x * y + 2 * w * z, 1 - 2 * x * x - 2 * z * z, 2 * y * z - 2 * w * x, p.y,  //
           2 * x * z - 2 * w * y, 2 * y * z + 2 * w * x, 1 - 2 * x * x - 2 * y * y, p.z}};
}

Matrix3x4 Product(const Matrix3x4& a, const Matrix3x4& b) {
  Matrix3x4 product{};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      for (int k = 0; k < 3; ++k) product.Set(row, column, product(row, column) + a(row, k) * b(k, column));
    }
    product.Set(row, 3, product(row, 3) + a(row, 3));
  }
  return product;
}

/// The inverse of a rotation and translation.
Matrix3x4 Inverse(const Matrix3x4& m) {
  Matrix3x4 inverse{};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      inverse.Set(row, column, m(column, row));
      inverse.Set(row, 3, inverse(row, 3) - m(column, row) * m(column, 3));
    }
  }
  return inverse;
}

/// Gives each bone the number of its solid, else of the nearest one above it.
void WritePhysicsSolids(const ModelBuilder& model, const FileBuilder::Table<model::StudioBone>& bones) {
  const auto& solids = model.Physics->Solids;
  for (int64_t i = 0; i < bones.Count; ++i) {
    const BoneDescription& bone = model.Bones[static_cast<size_t>(i)];
    if (bone.Parent >= 0 && bone.Parent < i) bones[i].PhysicsSolid = bones[bone.Parent].PhysicsSolid;
    for (size_t solid = 0; solid < solids.size(); ++solid) {
      if (solids[solid].Values.Name == bone.Name) bones[i].PhysicsSolid = static_cast<int32_t>(solid);
    }
  }
}

/// Enters `procedure` and the place of its record, which is about to be written, in the bone.
void EnterProcedure(const FileBuilder::Table<model::StudioBone>& bones, int64_t i, int32_t procedure, int64_t place) {
  bones[i].ProceduralType = procedure;
  bones[i].ProceduralOffset = bones.To(place, i);
  bones[i].Flags |= model::BoneFlagProcedural;
}

/// What moves the bone beside the animations.
void WriteProcedure(const BoneDescription& bone, const FileBuilder::Table<model::StudioBone>& bones, int64_t i,
                    FileBuilder& mdl) {
  const size_t number = static_cast<size_t>(i);
  if (bone.Jiggle) {
    mdl.Mark(PlaceName("jiggle bone", {number}));
    EnterProcedure(bones, i, model::BoneProcedureJiggle, mdl.AppendValue(*bone.Jiggle));
  }
  if (bone.Driven) {
    const auto driven = mdl.Reserve<model::StudioDrivenBone>(1, PlaceName("driven bone", {number}));
    const auto triggers = mdl.Reserve<model::StudioTrigger>(static_cast<int64_t>(bone.Driven->Triggers.size()),
                                                            PlaceName("triggers", {number}));
    for (int64_t k = 0; k < triggers.Count; ++k) triggers[k] = bone.Driven->Triggers[static_cast<size_t>(k)];
    driven[0] = {bone.Driven->Driver, static_cast<int32_t>(triggers.Count), driven.To(triggers.Offset)};
    EnterProcedure(bones, i, model::BoneProcedureDriven, driven.Offset);
  }
}

}  // namespace

void WriteBones(const ModelBuilder& model, FileBuilder& mdl) {
  const auto bones = ReserveInHeader<model::StudioBone>(model.Bones, "bones", mdl, &StudioHeader::BoneCount,
                                                        &StudioHeader::BoneOffset);
  const int64_t count = bones.Count;
  std::vector<Matrix3x4> placements;
  for (int64_t i = 0; i < count; ++i) {
    const BoneDescription& bone = model.Bones[static_cast<size_t>(i)];
    const Matrix3x4 local = ToMatrix(bone);
    const bool hasParent = bone.Parent >= 0 && bone.Parent < i;
    placements.push_back(hasParent ? Product(placements[static_cast<size_t>(bone.Parent)], local) : local);

    const int32_t name = mdl.Text(bone.Name);
    model::StudioBone& record = bones[i];
    record.NameOffset = bones.To(name, i);
    record.Parent = bone.Parent;
    record.Position = bone.Position;
    record.Angles = bone.Angles;
    record.Rotation = ToQuat(bone.Angles);
    record.PositionScale = {bone.PositionScale[0], bone.PositionScale[1], bone.PositionScale[2]};
    record.RotationScale = {bone.RotationScale[0], bone.RotationScale[1], bone.RotationScale[2]};
    record.PoseToBone = Inverse(placements.back());
    record.Alignment = bone.Alignment;
    record.Flags = bone.Flags;
    record.Contents = 1;
  }
  mdl.Align(4);
  for (int64_t i = 0; i < count; ++i) {
    const BoneDescription& bone = model.Bones[static_cast<size_t>(i)];
    WriteProcedure(bone, bones, i, mdl);
    if (bone.SurfaceProp.empty()) continue;
    const int32_t text = mdl.Text(bone.SurfaceProp);
    bones[i].SurfacePropOffset = bones.To(text, i);
    mdl.Align(4);
  }
  if (model.Physics) WritePhysicsSolids(model, bones);
  mdl.Align(4);
}

}  // namespace tarnwick::tests
