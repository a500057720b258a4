// A model from its path to its first picture, beside the bare reading and decoding of its files; a tree of models as
// pictures; what one picture costs once all is loaded.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "archives/content_files.h"
#include "jobs/draw_pictures.h"
#include "support/model_builder.h"
#include "support/recording_host.h"
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"
#include "textures/pixel_rows.h"
#include "textures/vtf_file.h"
#include "view/materials/material_loader.h"
#include "view/renderer/gl_table.h"
#include "view/renderer/offscreen.h"
#include "view/renderer/renderer.h"
#include "view/scene/make_scene.h"
#include "view/scene/view_state.h"

namespace tarnwick {
namespace {

/// A texture of noise in DXT5 with all its mip levels.
std::string TextureOf(int side) {
  int levels = 1;
  size_t bytes = 16;
  for (int s = side; s > 1; s /= 2, ++levels)
    bytes += static_cast<size_t>(std::max(s / 4, 1) * std::max(s / 4, 1)) * 16;
  std::string pixels;
  for (size_t i = 0; i < bytes; ++i) pixels += static_cast<char>(i * 2654435761u >> 13);
  return tests::VtfBuilder().Size(side, side).Mips(levels).Format(textures::PixelFormat::Dxt5).Pixels(pixels).Build();
}

constexpr int Bones = 60;

/// What a character of a game weighs: 12,000 triangles on 60 bones, four materials with textures of 2048 by 2048 and
/// normal maps of 1024 by 1024 in DXT5, in a tree of `models` and `materials`.
class ModelTree {
 public:
  ModelTree() {
    tests::ModelBuilder model = Model(60, 100);
    model.Textures.clear();
    for (const std::string name : {"skin0", "skin1", "skin2", "skin3"}) {
      const std::string start = "materials/models/props/" + name;
      tests::WriteText(m_folder.Path(start + ".vtf"), TextureOf(2048));
      tests::WriteText(m_folder.Path(start + "_n.vtf"), TextureOf(1024));
      tests::WriteText(m_folder.Path(start + ".vmt"), "VertexLitGeneric { $basetexture models/props/" + name +
                                                          " $bumpmap models/props/" + name + "_n }");
      for (const char* end : {".vtf", "_n.vtf"}) m_textures.push_back(m_folder.Path(start + end));
      model.Textures.push_back(name);
    }
    model.SkinFamilies = {{0, 1, 2, 3}};
    m_path = model.Write(m_folder.Path("models/props"), "ball");
    Model(200, 250).Write(m_folder.Path("models/props"), "large");
  }
  const std::string& Path() const { return m_path; }
  std::string Large() const { return m_folder.Path("models/props/large.mdl"); }
  const std::vector<std::string>& Textures() const { return m_textures; }

 private:
  /// A ball of twice as many triangles as `Rings` times `Sides`, whose rings hang on the bones of a chain that bends.
  static tests::ModelBuilder Model(int Rings, int Sides) {
    std::vector<tests::VertexDescription> vertices;
    tests::StripDescription strip{.Vertices = {}};
    for (int ring = 0; ring <= Rings; ++ring) {
      for (int side = 0; side <= Sides; ++side) {
        const float a = 3.14159f * static_cast<float>(ring) / static_cast<float>(Rings);
        const float b = 6.28318f * static_cast<float>(side) / static_cast<float>(Sides);
        const model::Vec3 out{std::sin(a) * std::cos(b), std::sin(a) * std::sin(b), std::cos(a)};
        vertices.push_back({.Position = {30 * out.x, 30 * out.y, 30 * out.z},
                            .Normal = out,
                            .U = static_cast<float>(side) / static_cast<float>(Sides),
                            .V = static_cast<float>(ring) / static_cast<float>(Rings),
                            .Weights = {{static_cast<uint8_t>(ring % Bones), 0.6f},
                                        {static_cast<uint8_t>((ring + 1) % Bones), 0.4f}}});
        if (ring == Rings || side == Sides) continue;
        const auto at = [&](int r, int s) { return static_cast<uint16_t>(r * (Sides + 1) + s); };
        const uint16_t corners[] = {at(ring, side), at(ring + 1, side),     at(ring + 1, side + 1),
                                    at(ring, side), at(ring + 1, side + 1), at(ring, side + 1)};
        strip.Vertices.insert(strip.Vertices.end(), std::begin(corners), std::end(corners));
      }
    }
    tests::MeshDescription mesh{.Vertices = std::move(vertices), .Lods = {{{std::move(strip)}}}};
    tests::ModelBuilder model{.BodyParts = {{.Models = {{.Meshes = {std::move(mesh)}}}}}};
    model.Bones.clear();
    tests::AnimationDescription turn{.Name = "@turn", .FrameCount = 30};
    for (int bone = 0; bone < Bones; ++bone) {
      model.Bones.push_back({.Name = "b" + std::to_string(bone), .Parent = bone - 1});
      std::vector<int16_t> values;
      for (int frame = 0; frame < 30; ++frame) values.push_back(static_cast<int16_t>(frame));
      turn.Data.Bones.push_back(
          {.Bone = static_cast<uint8_t>(bone),
           .RotationRuns = std::array<tests::AxisRuns, 3>{tests::AxisRuns{{values, 30}}, {}, {}}});
    }
    model.Animations = {turn};
    model.Sequences = {{.Label = "turn"}};
    return model;
  }

  tests::ScratchFolder m_folder;
  std::string m_path;
  std::vector<std::string> m_textures;
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
    for (const std::string& file : Tree().Textures()) {
      const auto image = core::FileImage::Read(file);
      std::string reason;
      const auto vtf = textures::VtfFile::Open(image->View(), reason);
      for (int mip = 0; mip < vtf->Info().MipLevels; ++mip) {
        const int side = textures::MipSize(vtf->Info().Width, mip);
        std::vector<uint8_t> pixels(static_cast<size_t>(side * side) * 4);
        textures::DecodeRows({vtf->Info().Format, side, side, vtf->Image({.Mip = mip})}, 0, side,
                             textures::PixelLayout::Bgra32, pixels.data(), ptrdiff_t{side} * 4);
        benchmark::DoNotOptimize(pixels);
      }
    }
  }
}
BENCHMARK(ReadAndDecode)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A context with all that a model needs, loaded.
struct Loaded {
  explicit Loaded(view::Offscreen& context, view::Renderer& renderer, int side, int largestTexture) {
    tests::RecordingTroubles troubles;
    Scene = *view::MakeScene(Tree().Path(), troubles);
    const archives::ContentFiles content("", troubles);
    view::TextureCache cache(size_t{256} << 20, largestTexture);
    const auto materials =
        view::LoadMaterials(Scene.Materials, Scene.MaterialDirectories, {content, Tree().Path()}, cache);
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

/// From the path to a scene, and its materials.
void MakeScene(benchmark::State& state) {
  tests::RecordingTroubles troubles;
  for (auto _ : state) benchmark::DoNotOptimize(view::MakeScene(Tree().Path(), troubles));
}
BENCHMARK(MakeScene)->Unit(benchmark::kMillisecond)->UseRealTime();

void LoadMaterials(benchmark::State& state) {
  tests::RecordingTroubles troubles;
  const auto scene = view::MakeScene(Tree().Path(), troubles);
  for (auto _ : state) {
    const archives::ContentFiles content("", troubles);
    view::TextureCache cache;
    benchmark::DoNotOptimize(
        view::LoadMaterials(scene->Materials, scene->MaterialDirectories, {content, Tree().Path()}, cache));
  }
}
BENCHMARK(LoadMaterials)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A context, its shaders and its end: what a window pays once.
void MakeContext(benchmark::State& state) {
  for (auto _ : state) {
    std::string reason;
    const auto context = view::Offscreen::Make(reason);
    if (context == nullptr) return state.SkipWithError(reason.c_str());
    benchmark::DoNotOptimize(view::Renderer::Make(context->Functions(), reason));
  }
}
BENCHMARK(MakeContext)->Unit(benchmark::kMillisecond)->UseRealTime();

/// From the path to the pixels, in a context that is there.
void FirstPicture(benchmark::State& state) {
  std::string reason;
  const auto context = view::Offscreen::Make(reason);
  if (context == nullptr) return state.SkipWithError(reason.c_str());
  const auto renderer = view::Renderer::Make(context->Functions(), reason);
  const auto draw = [&] {
    const Loaded loaded(*context, *renderer, 512, static_cast<int>(state.range(0)));
    const view::ScenePose pose(loaded.Scene);
    renderer->Draw(loaded.State, pose, loaded.Target);
    benchmark::DoNotOptimize(context->Pixels());
  };
  draw();  // the software renderer compiles what it needs
  renderer->Unload();
  for (auto _ : state) {
    draw();
    state.PauseTiming();
    renderer->Unload();  // a first picture takes the place of none
    state.ResumeTiming();
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
  renderer->Draw(loaded.State, pose, loaded.Target);  // what is compiled and handed over once
  size_t triangles = 0;
  for (auto _ : state) triangles += renderer->Draw(loaded.State, pose, loaded.Target).Triangles;
  benchmark::DoNotOptimize(context->Pixels());
  state.SetItemsProcessed(static_cast<int64_t>(triangles));
}
BENCHMARK(NextPicture)->ArgName("side")->Arg(16)->Arg(512)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A driver that does nothing, so that what is left is ours: every function is there and returns at once.
template <typename Function>
struct Idle;
template <typename Result, typename... Arguments>
struct Idle<Result (*)(Arguments...)> {
  static Result Call(Arguments...) { return Result(); }
};

std::shared_ptr<const view::GlFunctions> IdleDriver() {
  auto gl = std::make_shared<view::GlFunctions>();
#define TARNWICK_IDLE(name, type) gl->name = &Idle<PFNGL##type##PROC>::Call;
  TARNWICK_GL_FUNCTIONS(TARNWICK_IDLE)
#undef TARNWICK_IDLE
  const auto names = +[](GLsizei count, GLuint* objects) { std::iota(objects, objects + count, 1u); };
  gl->GenBuffers = gl->GenFramebuffers = gl->GenRenderbuffers = gl->GenTextures = gl->GenVertexArrays = names;
  gl->GetIntegerv = [](GLenum, GLint* value) { *value = 8192; };
  gl->GetShaderiv = gl->GetProgramiv = [](GLuint, GLenum, GLint* value) { *value = GL_TRUE; };
  gl->CreateShader = [](GLenum) { return 1u; };
  gl->CreateProgram = [] { return 1u; };
  gl->CheckFramebufferStatus = [](GLenum) { return static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE); };
  return gl;
}

/// A frame of 100,000 triangles whose bones move: the pose and all calls, without what a driver does in them.
void FrameBesideDriver(benchmark::State& state) {
  tests::RecordingTroubles troubles;
  const auto scene = view::MakeScene(Tree().Large(), troubles);
  std::string reason;
  const auto renderer = view::Renderer::Make(IdleDriver(), reason);
  if (!scene || renderer == nullptr) return state.SkipWithError(reason.c_str());
  renderer->Load(*scene, {});
  view::ViewState shown = view::FirstViewOf(*scene, 1);
  shown.Extras.Bones = state.range(0) != 0;
  view::ScenePose pose(*scene);
  size_t triangles = 0;
  for (auto _ : state) {
    view::Advance(*scene, shown, 0.016f);
    pose.Set(view::PoseOf(shown));
    triangles += renderer->Draw(shown, pose, {.Framebuffer = 1, .Width = 1024, .Height = 768}).Triangles;
  }
  state.counters["triangles"] = static_cast<double>(triangles) / static_cast<double>(state.iterations());
}
BENCHMARK(FrameBesideDriver)->ArgName("bones shown")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

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
