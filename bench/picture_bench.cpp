// A model from its path to its first picture, beside the bare reading and decoding of its files; a tree of models as
// pictures; what one picture costs once all is loaded.

#include <benchmark/benchmark.h>

#include <cmath>

#include "archives/game_files.h"
#include "jobs/draw_pictures.h"
#include "support/model_builder.h"
#include "support/recording_host.h"
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"
#include "textures/pixel_rows.h"
#include "textures/vtf_file.h"
#include "view/materials/material_loader.h"
#include "view/renderer/offscreen.h"
#include "view/renderer/renderer.h"
#include "view/scene/make_scene.h"
#include "view/scene/view_state.h"

namespace tarnwick {
namespace {

constexpr int Rings = 120, Sides = 160;  // 38,400 triangles

/// A round model of two materials with textures of 1024 by 1024 in DXT1, in a tree of `models` and `materials`.
class ModelTree {
 public:
  ModelTree() {
    std::string pixels;
    for (size_t i = 0; i < 1024 * 1024 / 2; ++i) pixels += static_cast<char>(i * 2654435761u >> 13);
    const std::string texture =
        tests::VtfBuilder().Size(1024, 1024).Mips(1).Format(textures::PixelFormat::Dxt1).Pixels(pixels).Build();
    tests::WriteText(m_folder.Path("materials/models/props/skin.vtf"), texture);
    tests::WriteText(m_folder.Path("materials/models/props/skin.vmt"),
                     "VertexLitGeneric { $basetexture models/props/skin }");
    m_path = Model().Write(m_folder.Path("models/props"), "ball");
  }
  const std::string& Path() const { return m_path; }
  std::string Texture() const { return m_folder.Path("materials/models/props/skin.vtf"); }

 private:
  static tests::ModelBuilder Model() {
    std::vector<tests::VertexDescription> vertices;
    tests::StripDescription strip{.Vertices = {}};
    for (int ring = 0; ring <= Rings; ++ring) {
      for (int side = 0; side <= Sides; ++side) {
        const float a = 3.14159f * static_cast<float>(ring) / Rings, b = 6.28318f * static_cast<float>(side) / Sides;
        const model::Vec3 out{std::sin(a) * std::cos(b), std::sin(a) * std::sin(b), std::cos(a)};
        vertices.push_back({.Position = {30 * out.x, 30 * out.y, 30 * out.z},
                            .Normal = out,
                            .U = static_cast<float>(side) / Sides,
                            .V = static_cast<float>(ring) / Rings});
        if (ring == Rings || side == Sides) continue;
        const auto at = [&](int r, int s) { return static_cast<uint16_t>(r * (Sides + 1) + s); };
        const uint16_t corners[] = {at(ring, side), at(ring + 1, side),     at(ring + 1, side + 1),
                                    at(ring, side), at(ring + 1, side + 1), at(ring, side + 1)};
        strip.Vertices.insert(strip.Vertices.end(), std::begin(corners), std::end(corners));
      }
    }
    tests::MeshDescription mesh{.Vertices = std::move(vertices), .Lods = {{{std::move(strip)}}}};
    return {.BodyParts = {{.Models = {{.Meshes = {std::move(mesh)}}}}}};
  }

  tests::ScratchFolder m_folder;
  std::string m_path;
};

const ModelTree& Tree() {
  static const ModelTree tree;
  return tree;
}

/// The files read whole and every pixel decoded, and no more.
void ReadAndDecode(benchmark::State& state) {
  const std::string path = Tree().Path();
  for (auto _ : state) {
    for (const std::string& file :
         {path, path.substr(0, path.size() - 4) + ".vvd", path.substr(0, path.size() - 4) + ".dx90.vtx"}) {
      benchmark::DoNotOptimize(core::FileImage::Read(file));
    }
    const auto image = core::FileImage::Read(Tree().Texture());
    std::string reason;
    const auto vtf = textures::VtfFile::Open(image->View(), reason);
    std::vector<uint8_t> pixels(size_t{1024} * 1024 * 4);
    textures::DecodeRows({vtf->Info().Format, 1024, 1024, vtf->Image({})}, 0, 1024, textures::PixelLayout::Bgra32,
                         pixels.data(), 4096);
    benchmark::DoNotOptimize(pixels);
  }
}
BENCHMARK(ReadAndDecode)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A context with all that a model needs, loaded.
struct Loaded {
  explicit Loaded(view::Offscreen& context, view::Renderer& renderer, int side, int largestTexture) {
    tests::RecordingTroubles troubles;
    Scene = *view::MakeScene(Tree().Path(), troubles);
    const view::GameMaterials game("", troubles);
    view::TextureCache cache(size_t{256} << 20, largestTexture);
    const auto materials =
        view::LoadMaterials(Scene.Materials, Scene.MaterialDirectories, {game, Tree().Path()}, cache);
    renderer.Load(Scene, materials);
    State = view::FirstViewOf(Scene, 1);
    State.Extras.Grid = false;
    Target = {.Width = side, .Height = side};
    std::string reason;
    Target.Framebuffer = context.Framebuffer(side, side, reason);
  }

  view::Scene Scene;
  view::ViewState State;
  view::DrawTarget Target;
};

/// From the path to the pixels, in a context that is there.
void FirstPicture(benchmark::State& state) {
  std::string reason;
  const auto context = view::Offscreen::Make(reason);
  if (context == nullptr) return state.SkipWithError(reason.c_str());
  const auto renderer = view::Renderer::Make(context->Functions(), reason);
  for (auto _ : state) {
    const Loaded loaded(*context, *renderer, 512, static_cast<int>(state.range(0)));
    const view::ScenePose pose(loaded.Scene);
    renderer->Draw(loaded.State, pose, loaded.Target);
    benchmark::DoNotOptimize(context->Pixels());
  }
}
BENCHMARK(FirstPicture)->ArgName("largest texture")->Arg(0)->Arg(512)->Unit(benchmark::kMillisecond)->UseRealTime();

/// One picture more of a model that is loaded: what the calling thread pays, the driver's part included.
void NextPicture(benchmark::State& state) {
  std::string reason;
  const auto context = view::Offscreen::Make(reason);
  if (context == nullptr) return state.SkipWithError(reason.c_str());
  const auto renderer = view::Renderer::Make(context->Functions(), reason);
  const Loaded loaded(*context, *renderer, static_cast<int>(state.range(0)), 0);
  const view::ScenePose pose(loaded.Scene);
  size_t triangles = 0;
  for (auto _ : state) triangles += renderer->Draw(loaded.State, pose, loaded.Target).Triangles;
  benchmark::DoNotOptimize(context->Pixels());
  state.SetItemsProcessed(static_cast<int64_t>(triangles));
}
BENCHMARK(NextPicture)->ArgName("side")->Arg(16)->Arg(512)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Twenty models into PNG files of 512 by 512, as the command does.
void Pictures(benchmark::State& state) {
  const tests::ScratchFolder output;
  jobs::DrawPictures job{.Inputs = std::vector<std::string>(20, Tree().Path()),
                         .Output = output.Path(),
                         .Threads = static_cast<int>(state.range(0))};
  for (auto _ : state) {
    tests::RecordingHost host;
    const jobs::JobResult result = jobs::Run(job, host, {});
    if (!result.Succeeded()) return state.SkipWithError("a picture was not drawn");
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 20);
}
BENCHMARK(Pictures)->ArgName("threads")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace tarnwick
