// Options of bones, attachments and what animates without sequences.

#include "qc/option_tables.h"

namespace tarnwick::qc {

using enum Key;

const OptionTable& AttachmentOptions() {
  static const OptionRow Rows[] = {{"absolute", Absolute},
                                   {"rigid", Rigid},
                                   {"rotate", Rotate, "nnn"},
                                   {"world_align", Key::WorldAlign},
                                   {"x_and_z_axes", XAndZAxes, "nnnnnn"}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& PoseParameterOptions() {
  static const OptionRow Rows[] = {{"loop", Loop, "n"}, {"wrap", Wrap}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& BoneSaveFrameOptions() {
  static const OptionRow Rows[] = {{"position", Position}, {"rotation", Rotation}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& IkChainOptions() {
  static const OptionRow Rows[] = {{"height", Height, "n"}, {"pad", Pad, "n"},         {"floor", Floor, "n"},
                                   {"knee", Knee, "nnn"},   {"center", Center, "nnn"}, {"X", ChainAxis, "n"},
                                   {"Y", ChainAxis, "n"},   {"Z", ChainAxis, "n"}};
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& AnimBlockOptions() {
  static const OptionRow Rows[] = {
      {"nostall", NoStall},          {"highres", HighRes},           {"lowres", LowRes},
      {"numframes", NumFrames, "i"}, {"cachehighres", CacheHighRes}, {"posdelta", PosDelta, "n"}};
  static const OptionTable table(Rows);
  return table;
}

namespace {

/// All properties are read in every group; which of them a group uses is for whoever builds it.
const OptionTable& JiggleProperties() {
  static const OptionRow Rows[] = {
      {"length", Length, "n"},
      {"tip_mass", TipMass, "n"},
      {"yaw_stiffness", YawStiffness, "n"},
      {"pitch_stiffness", PitchStiffness, "n"},
      {"yaw_damping", YawDamping, "n"},
      {"pitch_damping", PitchDamping, "n"},
      {"allow_length_flex", AllowLengthFlex},
      {"along_stiffness", AlongStiffness, "n"},
      {"along_damping", AlongDamping, "n"},
      {"angle_constraint", AngleConstraint, "n"},
      {"yaw_constraint", YawConstraint, "nn"},
      {"pitch_constraint", PitchConstraint, "nn"},
      {"yaw_friction", YawFriction, "n"},
      {"pitch_friction", PitchFriction, "n"},
      {"yaw_bounce", YawBounce, "n"},
      {"pitch_bounce", PitchBounce, "n"},
      {"base_mass", BaseMass, "n"},
      {"stiffness", Stiffness, "n"},
      {"damping", Damping, "n"},
      {"left_constraint", LeftConstraint, "nn"},
      {"up_constraint", UpConstraint, "nn"},
      {"forward_constraint", ForwardConstraint, "nn"},
      {"left_friction", LeftFriction, "n"},
      {"up_friction", UpFriction, "n"},
      {"forward_friction", ForwardFriction, "n"},
      {"impact_speed", ImpactSpeed, "n"},
      {"impact_angle", ImpactAngle, "n"},
      {"damping_rate", DampingRate, "n"},
      {"frequency", Frequency, "n"},
      {"amplitude", Amplitude, "n"},
  };
  static const OptionTable table(Rows);
  return table;
}

}  // namespace

const OptionTable& JiggleBoneOptions() {
  static const OptionRow Rows[] = {{"is_rigid", IsRigid, "", &JiggleProperties(), Block::Options},
                                   {"is_flexible", IsFlexible, "", &JiggleProperties(), Block::Options},
                                   {"has_base_spring", HasBaseSpring, "", &JiggleProperties(), Block::Options},
                                   {"is_boing", IsBoing, "", &JiggleProperties(), Block::Options}};
  static const OptionTable table(Rows);
  return table;
}

}  // namespace tarnwick::qc
