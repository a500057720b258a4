#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/trouble.h"
#include "model/phy_text.h"

namespace tarnwick::model {

/// A block `solid` of the text: what the game has to know of a rigid body beside its form.
struct PhySolidValues {
  std::string Name = {};    // the bone of a joined model, else the name of the collision mesh
  std::string Parent = {};  // the name of the solid that it hangs on; empty for a root
  std::string SurfaceProp = {};
  float Mass = 1;
  float Damping = 0;
  float RotationDamping = 0;
  float Inertia = 1;
  float Volume = 0;    // cubic inches
  float MassBias = 1;  // written where it is not 1
};

/// How far a solid may turn against its parent round one axis of its bone, in degrees.
struct PhyAxisLimit {
  float Minimum = 0;
  float Maximum = 0;
  float Friction = 0;
};

/// A block `ragdollconstraint`; solids by number.
struct PhyConstraint {
  int32_t Parent = 0;
  int32_t Child = 0;
  std::array<PhyAxisLimit, 3> Axes = {};
};

/// A block `animatedfriction`; times in seconds.
struct PhyAnimatedFriction {
  float Minimum = 0;
  float Maximum = 0;
  float TimeIn = 0;
  float TimeOut = 0;
  float TimeHold = 0;
};

/// The text of a .phy file by its meaning.
struct PhyValues {
  std::vector<PhySolidValues> Solids = {};
  std::vector<PhyConstraint> Constraints = {};
  std::vector<std::pair<int32_t, int32_t>> CollisionPairs = {};  // solids by number; none: all may collide
  bool NoSelfCollisions = false;
  std::optional<PhyAnimatedFriction> AnimatedFriction = {};

  // The first block `editparams`.
  std::string RootName = {};
  float TotalMass = 1;
  bool IsConcave = false;
  std::vector<std::pair<std::string, std::string>> JointMerges =
      {};  // the second bone's vertices lie in the first's solid

  /// What follows the first `editparams`, and blocks of other names, as the file has them.
  std::vector<PhyEntry> Others = {};

  /// Pairs that the blocks above hold beside those that they are known to have.
  int64_t UnknownPairs = 0;
};

/// Takes the text of the file named `file`, which has `solidCount` solids, by its meaning. A number that is none or not
/// finite keeps its default, an index of a solid that the file does not have costs its constraint or pair; each is told
/// as a warning.
PhyValues TakePhyValues(const std::vector<PhyEntry>& text, int64_t solidCount, const std::string& file,
                        core::TroubleSink& troubles);

/// The text that stands for `values` in a .phy file, without the NUL that ends it. `tail`, in the same form, follows as
/// it stands. `Others` is not written, nor are quotes in names.
std::string FormatPhyText(const PhyValues& values, std::string_view tail = {});

}  // namespace tarnwick::model
