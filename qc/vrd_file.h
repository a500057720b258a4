#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qc/messages.h"
#include "qc/script_files.h"

namespace tarnwick::qc {

/// A pose of a driven bone: while the driver's rotation lies within the cone round `Driver`, the helper blends towards
/// `Rotation` and `Position`. Angles are degrees, Euler X Y Z; places are units; both in the space of the bone's
/// parent.
struct VrdTrigger {
  Place At;
  double ConeAngle = 0;
  std::array<double, 3> Driver{};
  std::array<double, 3> Rotation{};
  std::array<double, 3> Position{};
};

/// A line of a bone that is read and not understood further: `<display>`, `<rotateaxis>`, `<jointorient>`.
struct VrdLine {
  Place At;
  std::string_view Tag;
  std::vector<std::string_view> Words;
};

/// A bone that other bones drive: by poses (`<helper>`), or by pointing at an attachment (`<aimconstraint>`).
struct VrdBone {
  enum class Kind { Helper, Aim };

  Kind What = Kind::Helper;
  Place At;
  std::string_view Name;
  std::string_view Parent;
  std::string_view DriverParent;  // of a helper
  std::string_view Driver;        // of a helper the bone, of an aim constraint the attachment
  std::array<double, 3> BasePosition{};
  std::optional<std::array<double, 3>> AimVector;
  std::optional<std::array<double, 3>> UpVector;
  std::vector<VrdTrigger> Triggers;
  std::vector<VrdLine> Others;
};

/// The text of a VRD file: what $proceduralbones names. Views lie in `Files`.
struct VrdFile {
  static constexpr size_t MostTriggers = 32;  // of one bone

  ScriptFiles Files;
  std::vector<VrdBone> Bones;
  Messages Told;
};

/// Reads the file at `path`; what is wrong with it is told, and the other lines are read.
VrdFile ReadVrd(const std::string& path);
VrdFile ReadVrdText(std::string_view text, const std::string& path);

}  // namespace tarnwick::qc
