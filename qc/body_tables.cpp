// Options of bodies, faces, levels of detail and collision.

#include "qc/option_tables.h"

namespace tarnwick::qc {

using enum Key;

const OptionTable& BodyOptions() {
  static const OptionRow Rows[] = {{"reverse", Reverse}, {"scale", Key::Scale, "n"}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& BodyGroupOptions() {
  static const OptionRow Rows[] = {{"studio", Studio, "f", &BodyOptions()}, {"blank", Blank}};
  static const OptionTable table(Rows);
  return table;
}

namespace {

const OptionTable& EyelidOptions() {
  static const OptionRow Rows[] = {{"lowerer", Lowerer, "in"},
                                   {"neutral", Neutral, "in"},
                                   {"raiser", Raiser, "in"},
                                   {"split", Split, "n"},
                                   {"eyeball", Eyeball, "w"}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& NamedEyelidOptions() {
  static const OptionRow Rows[] = {{"lowerer", Lowerer, "wn"},
                                   {"neutral", Neutral, "wn"},
                                   {"raiser", Raiser, "wn"},
                                   {"split", Split, "n"},
                                   {"eyeball", Eyeball, "w"}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& ShapeOptions() {
  static const OptionRow Rows[] = {
      {"frame", Frame, "i"}, {"position", Position, "n"}, {"split", Split, "n"}, {"decay", Decay, "n"}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& FlexFileOptions() {
  static const OptionRow Rows[] = {{"defaultflex", DefaultFlex, "", &ShapeOptions()},
                                   {"flex", Flex, "w", &ShapeOptions()},
                                   {"flexpair", FlexPair, "wn", &ShapeOptions()}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& FlexControllerOptions() {
  static const OptionRow Rows[] = {{"range", Range, "nn"},
                                   {"default", Default, "n", nullptr, Block::None, Support::NoEffect}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& ReplaceModelOptions() {
  static const OptionRow Rows[] = {{"reverse", Reverse}};
  static const OptionTable table(Rows);
  return table;
}

}  // namespace

const OptionTable& FaceOptions() {
  static const OptionRow Rows[] = {
      {"eyeball", Eyeball, "wwnnnwnnwn"},
      {"eyelid", Eyelid, "wv", &EyelidOptions()},
      {"dmxeyelid", DmxEyelid, "w", &NamedEyelidOptions(), Block::None, Support::NotBuilt},
      {"mouth", Mouth, "iwwnnn"},
      {"flexfile", FlexFile, "v", &FlexFileOptions(), Block::Options},
      {"flexcontroller", FlexController, "w", &FlexControllerOptions()},
      {"localvar", LocalVar, "w*"},
      {"spherenormals", SphereNormals, "wnnn"},
      {"noautodmxrules", NoAutoDmxRules},
      {"vcafile", VcaFile, "v"},
      {"reverse", Reverse},
      {"scale", Key::Scale, "n"},
  };
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& LodOptions() {
  static const OptionRow Rows[] = {
      {"replacemodel", ReplaceModel, "ws", &ReplaceModelOptions()},
      {"removemodel", RemoveModel, "w"},
      {"replacematerial", ReplaceMaterial, "ww"},
      {"removemesh", RemoveMesh, "w"},
      {"nofacial", NoFacial},
      {"facial", Facial},
      {"replacebone", ReplaceBone, "ww"},
      {"bonetreecollapse", BoneTreeCollapse, "w"},
      {"use_shadowlod_materials", UseShadowLodMaterials, "", nullptr, Block::None, Support::NotBuilt},
  };
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& CollisionOptions() {
  using enum Support;
  static const OptionRow Rows[] = {
      {"$mass", Mass, "m"},
      {"$automass", AutoMass},
      {"$masscenter", MassCenter, "nnn"},
      {"$inertia", Inertia, "m"},
      {"$damping", Damping, "m"},
      {"$rotdamping", RotDamping, "m"},
      {"$drag", Drag, "m"},
      {"$concave", Concave},
      {"$concaveperjoint", ConcavePerJoint},
      {"$maxconvexpieces", MaxConvexPieces, "i"},
      {"$addconvexsrc", AddConvexSrc, "f?w"},
      {"$remove2d", Remove2d, "L", nullptr, Block::None, NotBuilt},
      {"$weldposition", WeldPosition, "L", nullptr, Block::None, NotBuilt},
      {"$weldnormal", WeldNormal, "L", nullptr, Block::None, NotBuilt},
      {"$rootbone", RootBone, "w"},
      {"$assumeworldspace", AssumeWorldSpace},
      {"$jointskip", JointSkip, "w"},
      {"$jointmerge", JointMerge, "ww"},
      {"$jointconstrain", JointConstrain, "www?nnn"},
      {"$jointinertia", JointInertia, "w?m"},
      {"$jointdamping", JointDamping, "w?m"},
      {"$jointrotdamping", JointRotDamping, "w?m"},
      {"$jointmassbias", JointMassBias, "wm"},
      {"$noselfcollisions", NoSelfCollisions},
      {"$jointcollide", JointCollide, "ww"},
      {"$animatedfriction", AnimatedFriction, "nnnnn"},
      {"$collisionprecision", CollisionPrecision, "L", nullptr, Block::None, NotBuilt},
  };
  static const OptionTable table(Rows);
  return table;
}

}  // namespace tarnwick::qc
