// Writes the seed corpus of the decompile target: decompile_seeds DIRECTORY

#include <cstdio>
#include <fstream>
#include <map>

#include "decompile_input.h"
#include "decompiler/decompile_job.h"
#include "model/animation_records.h"
#include "support/model_builder.h"

namespace {

using namespace tarnwick::tests;
using namespace tarnwick::model;

ModelBuilder Meshes() {
  ModelBuilder model{.Bones = {{}, {.Name = "hand", .Parent = 0}}, .Textures = {"a", "b"}};
  const MeshDescription mesh{.Material = 1,
                             .Lods = {{{{{0, 1, 2}}, {{2, 1, 0}, true}}, {{{0, 2, 1}}}}, Triangles({0, 1, 2}), {}}};
  model.BodyParts = {{.Models = {{.Name = "x\\a.smd", .Meshes = {mesh, {}}, .SwitchDistances = {0, 10, -1}},
                                 {.Name = "", .Meshes = {}}}},
                     {.Name = "hat", .Models = {{.Name = "a.smd"}}}};
  return model;
}

ModelBuilder Animations() {
  ModelBuilder model{.Bones = {{}, {.Name = "b", .Parent = 0, .Flags = 0x100000}, {.Name = "c", .Parent = 1}}};
  const std::array<AxisRuns, 3> runs = {AxisRuns{{{1, 2}, 3}, {{5}, 9}}, AxisRuns{}, AxisRuns{{{7, 8, 9}, 12}}};
  const AnimDataDescription data{
      .Bones = {{.Bone = 0, .RotationRuns = runs, .PositionRuns = runs},
                {.Bone = 1, .Rotation48 = {{32768, 32768, 16384}}, .RawPosition = {{1, 2, 3}}},
                {.Bone = 2, .Rotation64 = 0x40000100000ull, .IsDelta = true}}};
  AnimDataDescription block = data;
  block.Block = 1;
  AnimDataDescription missing = data;
  missing.Block = -1;
  model.Animations = {{.Name = "walk", .Flags = AnimFlagLooping, .FrameCount = 12, .Data = data},
                      {.Name = "@lean", .Flags = AnimFlagDelta, .FrameCount = 9, .Data = block},
                      {.Name = "long", .FrameCount = 9, .SectionFrames = 4, .Sections = {data, block, missing, data}}};
  model.PoseParameters = {{.Wrap = 360}, {.Name = "pitch", .Start = -1, .End = 1}};
  model.Nodes = {"stand", "sit"};
  model.Sequences = {{.Label = "walk",
                      .Activity = "ACT_WALK",
                      .ActivityWeight = 1,
                      .Flags = SequenceFlagLooping,
                      .Events = {{.Cycle = 0.5f, .Event = 5}, {.Options = "o", .Name = "n"}},
                      .EntryNode = 1,
                      .ExitNode = 2},
                     {.Label = "blend",
                      .Flags = SequenceFlagDelta,
                      .Blends = {0, 1, 2, 0, 1, 2},
                      .BlendSize = {3, 2},
                      .PoseParameter = {0, 1},
                      .PoseStart = {-180, -1},
                      .PoseEnd = {180, 1},
                      .PoseKeys = {-180, 0, 180, -1, 1}}};
  model.AnimBlockName = "cube.ani";
  model.HitboxSets = {{}};
  model.Attachments = {{}};
  model.IncludedModels = {"models/anims.mdl"};
  model.IkChains = {{.Links = {{0, {}}, {1, {}}, {2, {}}}}};
  model.KeyValues = "mdlkeyvalue { a b }\n";
  model.SkinFamilies = {{0, 0}, {0, 0}};
  model.EyePosition = {1, 2, 3};
  return model;
}

ModelBuilder Face() {
  ModelBuilder model;
  MeshDescription mesh;
  mesh.Flexes = {{.FlexDesc = 0, .VertAnims = {{0, {1, 0, 0}, {}}, {2, {0, 1, 0}, {}}}}, {.FlexDesc = 1, .Partner = 2}};
  model.BodyParts = {{.Models = {{.Name = "face.smd", .Meshes = {mesh}, .Eyeballs = {{.UpperLidFlexDesc = 3}, {}}}}}};
  model.FlexDescs = {"jaw", "smileR", "smileL", "lid"};
  model.FlexControllers = {{}, {.Name = "jaw"}};
  model.FlexRules = {
      {0, {{FlexOpController, 1}, Constant(0.5f), {FlexOpMultiply, 0}, {FlexOpFlexDesc, 2}, {FlexOpAdd, 0}}}, {1, {}}};
  model.Mouths = {{}};
  return model;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::fprintf(stderr, "usage: decompile_seeds DIRECTORY\n");
    return 2;
  }
  ModelBuilder newer = Meshes();
  newer.Version = 49;
  ModelBuilder fixed = Meshes();
  fixed.Fixups = {{0, 6, 3}, {0, 3, 3}, {-1, 0, 1}, {1, 0, 3}};
  ModelBuilder oldBlocks = Animations();
  oldBlocks.AnimBlockVersion = 45;
  const std::map<std::string, ModelBuilder> seeds = {{"meshes", Meshes()},      {"newer", newer},
                                                     {"fixups", fixed},         {"animations", Animations()},
                                                     {"old_blocks", oldBlocks}, {"face", Face()}};
  for (const auto& [name, model] : seeds) {
    const ModelFiles files = model.Build();
    tarnwick::fuzz::DecompileInput input;
    input.Files = {files.Mdl.Bytes(), files.Vtx.Bytes(), files.Vvd.Bytes(), files.Ani.Bytes()};
    for (const uint32_t options : {0u, tarnwick::decompiler::DecompileOptionReadyToCompile}) {
      input.Options = static_cast<uint8_t>(options);
      const std::string path = std::string(arguments[1]) + "/" + name + (options == 0 ? "_plain" : "");
      std::ofstream(path, std::ios::binary) << input.Pack();
    }
  }
  return 0;
}
