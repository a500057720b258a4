#pragma once

#include <map>
#include <string>
#include <vector>

#include "random_parts.h"

namespace tarnwick::tests {

/// What a random face is made for: the mesh "head.smd" with these vertices.
struct RandomFaceRequest {
  Dice& Roll;
  bool WithEyes = false;  // the mesh wears Eye_R and eye_l
  std::vector<RandomVertex> Vertices = {};
  std::string Bone = {};      // in quotes
  std::string Skeleton = {};  // the nodes of a source
};

/// Adds "head.vta" to `files` and gives the $model statement that uses it.
std::string MakeRandomFace(const RandomFaceRequest& request, std::map<std::string, std::string>& files);

}  // namespace tarnwick::tests
