#pragma once

#include "project/model_project.h"

namespace tarnwick::tests {

/// A sound project of a crate, prop_physics, with one sequence, one gib and a collision SMD. `folder` is where its
/// files lie, with a separator at its end.
struct CrateProject {
  explicit CrateProject(const std::string& folder = "C:\\work\\") {
    Project.modelFile = "props/crate.mdl";
    Project.referenceSmd = folder + "crate.smd";
    Project.collisionFile = folder + "crate_phy.smd";
    Project.materialDirectory = "props";
    Project.propType = project::PropPhysics;
    Options.surfaceProp = "wood";
    Options.propPhysicsType = "Wooden.Small";
    project::SequenceEntry spin;
    spin.name = "spin";
    spin.smdFile = folder + "spin.smd";
    spin.loop = 1;
    Project.Sequences.Add(spin);
    Project.Gibs.Add({"props/crate_gib.mdl", "10", ""});
  }

  project::ModelOptions Options;
  project::ModelProject Project{Options};
};

}  // namespace tarnwick::tests
