// Writes the seed corpus of the phy target: phy_seeds DIRECTORY

#include <cstdio>
#include <fstream>
#include <map>

#include "support/phy_builder.h"

int main(int argumentCount, char** arguments) {
  using namespace tarnwick;
  if (argumentCount != 2) {
    std::fprintf(stderr, "usage: phy_seeds DIRECTORY\n");
    return 2;
  }
  const tests::PhyBuilder joined{
      .Solids = {{.Values = {.Name = "a"}, .BoneNumber = 1}, {.Values = {.Name = "b", .Parent = "a"}, .BoneNumber = 2}},
      .Values = {.Constraints = {{0, 1, {{{-10, 20, 0.5f}, {0, 0, 0}, {-360, 360, 1}}}}},
                 .CollisionPairs = {{0, 1}},
                 .AnimatedFriction = model::PhyAnimatedFriction{1, 400, 0.5f, 0.25f, 0},
                 .RootName = "a",
                 .JointMerges = {{"a", "c"}}},
      .Tail = "break { model \"x.mdl\" health 5 }\n"};
  const tests::PhyBuilder concave{
      .Solids = {{.Boxes = {{{0, 0, 0}, {4, 4, 4}}, {{8, 0, 0}, {12, 4, 4}}, {{16, 0, 0}, {20, 4, 4}}}}},
      .Values = {.IsConcave = true}};
  const std::map<std::string, std::string> seeds = {
      {"one", tests::PhyBuilder{}.Build()}, {"joined", joined.Build()}, {"concave", concave.Build()}};
  for (const auto& [name, bytes] : seeds) {
    std::ofstream(std::string(arguments[1]) + "/" + name, std::ios::binary) << bytes;
  }
  return 0;
}
