#include <array>

#include "walker.h"

namespace tarnwick::samples {

namespace {

/// A part of the falling figure: a box in the space of its bone, which is not turned, and how far it bends.
struct Part {
  WalkerBone Bone;
  int Parent;  // number of the part that it hangs on; -1 for none
  tests::BoxDescription Box;
  std::array<model::PhyAxisLimit, 3> Limits;  // degrees round X, Y and Z
};

constexpr int NoParent = -1;
enum PartNumber {
  PelvisPart,
  SpinePart,
  HeadPart,
  RightArmPart,
  RightForearmPart,
  LeftArmPart,
  LeftForearmPart,
  RightThighPart,
  RightCalfPart,
  LeftThighPart,
  LeftCalfPart
};

const tests::BoxDescription UpperArm = {{-1.6f, -1.6f, -11}, {1.6f, 1.6f, 1.5f}};
const tests::BoxDescription LowerArm = {{-1.4f, -1.4f, -13}, {1.4f, 1.4f, 0}};
const tests::BoxDescription UpperLeg = {{-2.6f, -2.6f, -16}, {2.6f, 2.6f, 0}};
const tests::BoxDescription LowerLeg = {{-2, -2, -18}, {2, 2, 0}};

// An elbow bends forward, a knee backward.
const Part Parts[] = {
    {Pelvis, NoParent, {{-4, -6.5f, -4}, {4, 6.5f, 5}}, {}},
    {Spine, PelvisPart, {{-4.5f, -7, 0}, {4.5f, 7, 15}}, {{{-20, 20, 0}, {-15, 50, 0}, {-25, 25, 0}}}},
    {Head, SpinePart, {{-4, -3.5f, 1}, {4.5f, 3.5f, 13}}, {{{-25, 25, 0}, {-30, 40, 0}, {-60, 60, 0}}}},
    {RightArm, SpinePart, UpperArm, {{{-10, 90, 0}, {-120, 40, 0}, {-40, 40, 0}}}},
    {RightForearm, RightArmPart, LowerArm, {{{0, 0, 0}, {-130, 0, 0}, {0, 0, 0}}}},
    {LeftArm, SpinePart, UpperArm, {{{-90, 10, 0}, {-120, 40, 0}, {-40, 40, 0}}}},
    {LeftForearm, LeftArmPart, LowerArm, {{{0, 0, 0}, {-130, 0, 0}, {0, 0, 0}}}},
    {RightThigh, PelvisPart, UpperLeg, {{{-10, 30, 0}, {-100, 30, 0}, {-15, 15, 0}}}},
    {RightCalf, RightThighPart, LowerLeg, {{{0, 0, 0}, {0, 130, 0}, {0, 0, 0}}}},
    {LeftThigh, PelvisPart, UpperLeg, {{{-30, 10, 0}, {-100, 30, 0}, {-15, 15, 0}}}},
    {LeftCalf, LeftThighPart, LowerLeg, {{{0, 0, 0}, {0, 130, 0}, {0, 0, 0}}}},
};

}  // namespace

tests::PhyBuilder WalkerPhysics(const std::vector<tests::BoneDescription>& bones) {
  tests::PhyBuilder physics{.Solids = {}, .SharesMass = true};
  for (const Part& part : Parts) {
    model::PhySolidValues values{.Name = bones[part.Bone].Name,
                                 .SurfaceProp = "flesh",
                                 .Damping = 0.01f,
                                 .RotationDamping = part.Bone == Head ? 4.0f : 1.5f,
                                 .Inertia = 10};
    if (part.Parent != NoParent) {
      values.Parent = bones[Parts[part.Parent].Bone].Name;
      physics.Values.Constraints.push_back({part.Parent, static_cast<int32_t>(physics.Solids.size()), part.Limits});
    }
    physics.Solids.push_back({values, part.Bone + 1, {part.Box}});
  }
  physics.Values.RootName = bones[Pelvis].Name;
  physics.Values.TotalMass = 80;
  physics.Values.JointMerges = {{bones[RightCalf].Name, bones[RightFoot].Name},
                                {bones[LeftCalf].Name, bones[LeftFoot].Name}};
  physics.Values.AnimatedFriction = model::PhyAnimatedFriction{1, 400, 0.5f, 0.3f, 0};
  return physics;
}

}  // namespace tarnwick::samples
