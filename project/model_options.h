#pragma once

#include <cstdint>
#include <string>

namespace tarnwick::project {

/// Options of the whole model. The main dialog owns the one record of the program and hands its pages a pointer to it.
struct ModelOptions {
  bool modelPath = true;  // materials go below materials/models; belongs to the material page, no model code reads it
  double scale = 1.0;
  std::string propPhysicsType = "metal.small";  // base of prop_data: a material and a size
  double mass = 100.0;                          // kilograms
  int32_t studioMdlOptions = 0;                 // bit set of studiomdl's switches; unknown bits are carried along
  std::string surfaceProp = "metal";
  std::string additionalQc;  // kept with the project; nothing prints it

  bool operator==(const ModelOptions&) const = default;
};

}  // namespace tarnwick::project
