#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace tarnwick::tests {

/// What a random model has; each kind of thing is there or not by itself, so that a failure can be narrowed down.
enum RandomThing : uint32_t {
  RandomStatic = 1U << 0,
  RandomWeights = 1U << 1,
  RandomBodyGroups = 1U << 2,
  RandomLevels = 1U << 3,
  RandomSkins = 1U << 4,
  RandomAttachments = 1U << 5,
  RandomHitboxes = 1U << 6,
  RandomAnimations = 1U << 7,
  RandomLongAnimations = 1U << 8,
  RandomDeltas = 1U << 9,
  RandomGrids = 1U << 10,
  RandomWords = 1U << 11,  // of sequences: events, layers, nodes, locks, weights, fades
  RandomTravel = 1U << 12,
  RandomIk = 1U << 13,
  RandomProcedures = 1U << 14,
  RandomCollision = 1U << 15,
  RandomJoints = 1U << 16,
  RandomHeader = 1U << 17,
  RandomFace = 1U << 18,
  RandomBones = 1U << 19,      // $definebone and bones that nothing needs
  RandomRepeats = 1U << 20,    // meshes named twice, a mesh without triangles, a collision model of the shown mesh
  RandomNames = 1U << 21,      // words of the language, blanks, quotes, slashes and letters beyond ASCII as names
  RandomOddMeshes = 1U << 22,  // triangles and vertices that nobody wants
  RandomBigSkeleton = 1U << 23,
  RandomEyes = 1U << 24,   // of a face: eyeballs and lids
  RandomShape = 1U << 25,  // statements that place, size, name and join sources, bones and sequences anew
  RandomThings = 26
};

/// The sources of a sound model, by their names; the script is "model.qc". The same seed and things give the same model
/// on every system.
std::map<std::string, std::string> RandomSources(uint32_t seed, uint32_t things);

}  // namespace tarnwick::tests
