#include <gmock/gmock.h>

#include <functional>
#include <limits>

#include "decompiled_model.h"
#include "model/animation_records.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"
#include "support/told_texts.h"

// Models that no compiler writes: each ends its stage with a message, never the program.

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int32_t Huge = std::numeric_limits<int32_t>::max();

struct Damage {
  const char* Message;  // what the box tells behind the file's path
  std::function<void(ModelFiles&)> Do;
};

const Damage Damages[] = {
    {"the bone table at byte ", [](auto& f) { f.Mdl.template Record<StudioHeader>("header").BoneCount = Huge; }},
    {"the bone table at byte -5 (1 record) begins before the start",
     [](auto& f) { f.Mdl.template Record<StudioHeader>("header").BoneOffset = -5; }},
    {"the bone name at byte ", [](auto& f) { f.Mdl.template Record<StudioBone>("bones").NameOffset = Huge; }},
    {"the body part table at byte ", [](auto& f) { f.Mdl.template Record<StudioHeader>("header").BodyPartCount = -2; }},
    {"the model table at byte ",
     [](auto& f) { f.Mdl.template Record<StudioBodyPart>("body parts").ModelCount = Huge; }},
    {"the mesh table at byte ", [](auto& f) { f.Mdl.template Record<StudioModel>("models 0").MeshCount = 100000; }},
    {"names an owner outside", [](auto& f) { f.Mdl.template Record<StudioMesh>("meshes 0.0").ModelOffset = -Huge; }},
    {"names vertex 2 of a mesh that begins at vertex -1;",
     [](auto& f) { f.Mdl.template Record<StudioMesh>("meshes 0.0").FirstVertex = -1; }},
    {"names vertex 2 of a mesh that begins at vertex 89478484;",
     [](auto& f) { f.Mdl.template Record<StudioModel>("models 0").VertexByteOffset = -48; }},
    {"the LOD table at byte ", [](auto& f) { f.Vtx.template Record<VtxHeader>("header").LodCount = Huge; }},
    {"the body part table at byte 0 has no model 0 in body part 0",
     [](auto& f) { f.Vtx.template Record<VtxBodyPart>("body parts").ModelOffset = -Huge; }},
    {"the mesh table at byte ", [](auto& f) { f.Vtx.template Record<VtxModelLod>("lods 0.0").MeshOffset = Huge; }},
    {"table at byte ",  // the first group behind the last is not one
     [](auto& f) { f.Vtx.template Record<VtxMesh>("meshes 0.0.0").StripGroupCount = Huge; }},
    {"the strip table at byte ",
     [](auto& f) { f.Vtx.template Record<VtxStripGroup>("group 0.0.0.0.0").StripCount = Huge; }},
    {"the index array at byte ",
     [](auto& f) { f.Vtx.template Record<VtxStrip>("strip 0.0.0.0.0.0").IndexCount = 30000; }},
    {"the index array at byte ", [](auto& f) { f.Vtx.template Record<VtxStrip>("strip 0.0.0.0.0.0").FirstIndex = -1; }},
    {"the strip group's vertex table at byte ",
     [](auto& f) { f.Vtx.template Record<VtxIndex>("indices 0.0.0.0.0").Vertex = 65535; }},
    {"names vertex 3 of a mesh",
     [](auto& f) { f.Vtx.template Record<VtxVertex>("vertices 0.0.0.0.0").MeshVertex = 3; }},
    {"the header at byte 0 runs past the end", [](auto& f) { f.Vtx.Bytes().resize(20); }},
    {"the header at byte 0 runs past the end", [](auto& f) { f.Vvd.Bytes().resize(20); }},
    {"the vertex table at byte -1", [](auto& f) { f.Vvd.template Record<VvdHeader>("header").VertexOffset = -1; }},
    {"the fix-up table at byte 64 (2147483647 records) runs past the end of the file",
     [](auto& f) { f.Vvd.template Record<VvdHeader>("header").FixupCount = Huge; }},
};

TEST(DamagedModel, AMaterialThatIsNotThereCostsItsMesh) {
  ModelBuilder model;
  model.Textures = {"skin", "cloth"};
  auto& meshes = model.BodyParts[0].Models[0].Meshes;
  meshes.push_back(meshes[0]);
  meshes[1].Material = 1;
  model.BodyParts.push_back(model.BodyParts[0]);
  ModelFiles files = model.Build();
  files.Mdl.Record<StudioMesh>("meshes 0.0").Material = 99999999;
  for (const uint32_t options : {0u, DecompileOptionReadyToCompile}) {
    const DecompiledModel job(files, options);
    EXPECT_THAT(TextsOf(job.Result, core::Severity::Error), ElementsAre(HasSubstr("names texture 99999999")));
    EXPECT_THAT(job.File("cube.smd"), HasSubstr("cloth.tga"));
    EXPECT_TRUE(job.File("cube.smd").ends_with("end\n"));
    EXPECT_THAT(job.MeshCommands(), HasSubstr(options == 0 ? "cube.smd" : "cube_2.smd"));
  }
}

TEST(DamagedModel, ASequenceThatIsDamagedCostsItselfAlone) {
  ModelBuilder model;
  model.Animations = {AnimationDescription{}};
  model.Sequences.assign(4, {.Events = {{0, 5004, "x", ""}}});
  for (size_t i = 0; i < 4; ++i) model.Sequences[i].Label = "s" + std::to_string(i);
  ModelFiles files = model.Build();
  files.Mdl.Record<StudioSeqDesc>("sequences", 0).EntryNode = 7;
  files.Mdl.Record<StudioSeqDesc>("sequences", 2).EventCount = 1'000'000;
  for (const uint32_t options : {0u, DecompileOptionReadyToCompile}) {
    const DecompiledModel job(files, options);
    EXPECT_THAT(TextsOf(job.Result, core::Severity::Error),
                ElementsAre(HasSubstr("transition node 7"), HasSubstr("the event table")));
    const std::string script = job.Script();
    if (options == 0) {
      const std::string event = " fps 30.00 {\n  { event 5004 0 \"x\" }\n}\n\n";
      EXPECT_THAT(job.Script("$sequence s1"), testing::StartsWith("$sequence s1 \"idle\"" + event + "$sequence s3"));
      EXPECT_THAT(script, testing::Not(HasSubstr("$sequence s0")));
      EXPECT_THAT(script, testing::Not(HasSubstr("$sequence s2")));
    } else {  // they are there, without the words that cannot be read
      const std::string event = "  { event 5004 0 \"x\" }\n}\n";
      EXPECT_THAT(job.Script("$sequence \"s0\"", "$sequence \"s1\""),
                  AllOf(testing::EndsWith(event), testing::Not(HasSubstr("node"))));
      EXPECT_THAT(job.Script("$sequence \"s1\"", "$sequence \"s2\""), testing::EndsWith(event));
      EXPECT_THAT(job.Script("$sequence \"s2\"", "$sequence \"s3\""), testing::Not(HasSubstr("event")));
    }
  }
}

TEST(DamagedModel, IsToldWithFileRecordAndOffset) {
  for (const uint32_t options : {0u, DecompileOptionReadyToCompile}) {
    for (const Damage& damage : Damages) {
      ModelFiles files = ModelBuilder().Build();
      files.Vvd.Bytes().resize(static_cast<size_t>(files.Vvd.Place("tangents")));
      damage.Do(files);
      const DecompiledModel job(files, options);
      ASSERT_FALSE(job.Report.Boxes.empty()) << damage.Message;
      EXPECT_THAT(job.Report.Boxes[0].Text, HasSubstr(damage.Message));
      EXPECT_THAT(job.Report.Boxes[0].Text, testing::StartsWith(job.In("cube.")));
      EXPECT_TRUE(job.Result.Completed);
      EXPECT_THAT(job.Report.LogText, testing::EndsWith("\r\nCompleted Dumping Model!\r\n"));
      if (options != 0) {
        EXPECT_THAT(job.Files(), ElementsAre("ravelback.qc")) << damage.Message;
      }
    }
  }
}

TEST(DamagedModel, CannotFillTheDisk) {
  const std::vector<uint16_t> many(60000, 0);
  ModelBuilder model;
  model.BodyParts[0].Models.assign(200, {.Name = "x.smd", .Meshes = {{.Lods = {Triangles(many)}}}});
  ScratchFolder folder;
  DecompileJob job{.ModelPath = model.Write(folder.Path("in"), "x"),
                   .OutputDirectory = folder.Path("in"),
                   .Options = DecompileOptionReadyToCompile,
                   .OutputLimit = 20'000'000};
  RecordingReport report;
  const DecompileResult result = DecompileModel(job, report);
  uint64_t written = 0;
  for (const WrittenFile& file : result.Files) written += file.Size;
  EXPECT_LT(written, 30'000'000u);
  EXPECT_FALSE(result.Succeeded());
  EXPECT_THAT(report.Boxes.at(0).Text, HasSubstr("MiB of output"));
}

TEST(DamagedModel, EndsInOrderWhereverAFileIsCutOff) {
  ModelBuilder model{.Bones = {{}, {.Parent = 0}}};
  model.BodyParts = {{.Models = {{.SwitchDistances = {0, -1}}, {.Name = "b"}}}};
  model.Fixups = {{0, 0, 3}, {0, 3, 3}};
  model.Animations = {{.FrameCount = 9, .Data = {.Bones = {{.RotationRuns = {{AxisRuns{{{1, 2}, 9}}, {}, {}}}}}}}};
  model.Sequences = {{}};
  const ModelFiles whole = model.Build();
  for (FileBuilder ModelFiles::*file : {&ModelFiles::Mdl, &ModelFiles::Vtx, &ModelFiles::Vvd}) {
    const int64_t size = (whole.*file).Size();
    for (int64_t cut = 0; cut < size; cut += 1 + size / 60) {
      ModelFiles files = whole;
      (files.*file).Bytes().resize(static_cast<size_t>(cut));
      const DecompiledModel job(files, DecompileOptionReadyToCompile);
      // Only the tail of the vertex file holds nothing that is read.
      if (cut < size / 2) {
        EXPECT_FALSE(job.Report.Troubles.empty()) << cut;
      }
    }
  }
}

}  // namespace
}  // namespace tarnwick::decompiler
