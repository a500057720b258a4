#include <filesystem>

#include "core/paths.h"
#include "decompiler/decompile_job.h"
#include "model/studio_records.h"
#include "scene_support.h"
#include "support/real_files.h"
#include "support/recording_report.h"
#include "view/scene/scene_pose.h"

namespace tarnwick::view {
namespace {

using namespace tests;
namespace fs = std::filesystem;

/// Triangles of the finest level, of all models, and the box of their corners in the rest pose.
struct Shown {
  int64_t Triangles = 0;
  Box Corners;

  void Add(const Scene& scene) {
    const ScenePose pose(scene);
    for (const SceneDraw& draw : scene.Draws) {
      if (draw.Lod != 0) continue;
      Triangles += draw.IndexCount / 3;
      for (int64_t i = draw.FirstIndex; i < draw.FirstIndex + draw.IndexCount; ++i) {
        const size_t vertex = scene.Indices[static_cast<size_t>(i)];
        Corners.Add(SkinPoint(scene.Points[vertex], scene.Vertices[vertex], pose.SkinMatrices()).Position);
      }
    }
  }
};

/// Whether the file called `name` is the source of a model of a body part, in the finest level.
bool IsModelSource(const std::string& name) {
  const bool isLevel = name.starts_with("lod") && name.size() > 4 && name[4] == '_';
  const bool isPhysics = name.find("phys") != std::string::npos;
  return !isLevel && !isPhysics && core::EqualIgnoringCase(fs::path(name).extension().string(), ".smd");
}

/// Parts of triangles whose side and normals agree.
double FacingShare(const Scene& scene) {
  int64_t agree = 0;
  int64_t all = 0;
  for (size_t i = 0; i + 2 < scene.Indices.size(); i += 3) {
    const ScenePoint& a = scene.Points[scene.Indices[i]];
    const ScenePoint& b = scene.Points[scene.Indices[i + 1]];
    const ScenePoint& c = scene.Points[scene.Indices[i + 2]];
    const float side = Dot(Cross(b.Position - a.Position, c.Position - a.Position), a.Normal + b.Normal + c.Normal);
    if (side == 0) continue;
    ++all;
    agree += side > 0;
  }
  return all == 0 ? 1 : static_cast<double>(agree) / static_cast<double>(all);
}

/// What the compiled model shows is what the sources that are made of it show.
void CheckModel(const std::string& path) {
  SCOPED_TRACE(path);
  RecordingTroubles told;
  const auto scene = MakeScene(path, told);
  ASSERT_TRUE(scene);
  for (const core::Trouble& trouble : told.Troubles) EXPECT_NE(trouble.Level, core::Severity::Error) << trouble.Text;
  EXPECT_GT(FacingShare(*scene), 0.9);
  Shown shown;
  shown.Add(*scene);

  const ScratchFolder folder;
  decompiler::DecompileJob job{
      .ModelPath = path, .OutputDirectory = folder.Path(), .Options = decompiler::DecompileOptionReadyToCompile};
  RecordingReport report;
  ASSERT_TRUE(decompiler::DecompileModel(job, report).Succeeded());
  Shown sources;
  for (const std::string& name : folder.Files()) {
    if (!IsModelSource(name)) continue;
    RecordingTroubles none;
    const auto smd = MakeSmdScene(folder.Path(name), none);
    ASSERT_TRUE(smd);
    EXPECT_GT(FacingShare(*smd), 0.9) << name;
    sources.Add(*smd);
  }
  EXPECT_GT(shown.Triangles, 0);
  EXPECT_EQ(shown.Triangles, sources.Triangles);
  // Every sequence keeps the model together: no vertex goes far from the box that the sequence gives.
  ScenePose pose(*scene);
  for (size_t s = 0; s < scene->Sequences.size(); ++s) {
    for (const float cycle : {0.0f, 0.5f}) {
      pose.Set({.Sequence = static_cast<int32_t>(s), .Cycle = cycle});
      const Box box = PosedBox(*scene, pose.SkinMatrices(), {}, 0);
      EXPECT_LT(box.Radius(), 4 * scene->MeshBox.Radius() + 1) << scene->Sequences[s].Name;
    }
  }

  // A model whose animations stand as its rest pose does was not turned as a source by itself is.
  const bool isStatic = (scene->Flags & model::ModelFlagStatic) != 0;
  if (!isStatic && scene->RestTurn == Quat{}) return;
  EXPECT_THAT(shown.Corners.Minimum,
              IsNear(sources.Corners.Minimum.X, sources.Corners.Minimum.Y, sources.Corners.Minimum.Z, 0.02f));
  EXPECT_THAT(shown.Corners.Maximum,
              IsNear(sources.Corners.Maximum.X, sources.Corners.Maximum.Y, sources.Corners.Maximum.Z, 0.02f));
}

TEST(RealScene, ShowsWhatTheDecompiledSourcesShow) {
  const fs::path folder = fs::path(RealFilesFolder()) / "models";
  if (!fs::exists(folder)) GTEST_SKIP() << "no real models in " << folder;
  int models = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".mdl") continue;
    CheckModel(entry.path().string());
    ++models;
  }
  EXPECT_GT(models, 0);
}

TEST(RealScene, ShowsTheSample) {
  CheckModel(TARNWICK_SAMPLES "/walker.mdl");
}

}  // namespace
}  // namespace tarnwick::view
