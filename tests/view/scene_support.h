#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "support/model_builder.h"
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"
#include "view/scene/make_scene.h"

namespace tarnwick::tests {

/// The scene of a built model, and what was told of it.
struct BuiltScene {
  explicit BuiltScene(const ModelBuilder& model) : BuiltScene(model.Build()) {}
  explicit BuiltScene(const ModelFiles& files) {
    const ScratchFolder folder;
    Made = view::MakeScene(files.Write(folder.Path(), "cube"), Told);
  }

  const view::Scene* operator->() const { return &*Made; }
  const view::Scene& operator*() const { return *Made; }

  RecordingTroubles Told;
  std::optional<view::Scene> Made;
};

/// A point near (x, y, z).
MATCHER_P4(IsNear, x, y, z, distance, "") {
  const view::Vec3 off = arg - view::Vec3{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
  *result_listener << "(" << arg.X << ", " << arg.Y << ", " << arg.Z << ")";
  return view::Length(off) <= distance;
}
inline auto Is(double x, double y, double z) {
  return IsNear(x, y, z, 1e-3f);
}

}  // namespace tarnwick::tests
