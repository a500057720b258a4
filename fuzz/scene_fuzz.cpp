// The scene of one model, made from memory, and what a viewer does with it. The inputs have the form of those of the
// decompile target.

#include <algorithm>
#include <cstdlib>
#include <string>

#include "decompile_input.h"
#include "support/recording_troubles.h"
#include "view/scene/face.h"
#include "view/scene/make_scene.h"
#include "view/scene/view_state.h"

namespace {

using namespace tarnwick;
using fuzz::DecompileInput;

/// Ends the program if something in `scene` leads nowhere.
void Check(const view::Scene& scene) {
  const auto need = [](bool holds) {
    if (!holds) std::abort();
  };
  need(scene.Points.size() == scene.Vertices.size() && !scene.Lods.empty() && !scene.Skins.empty());
  for (const uint32_t index : scene.Indices) need(index < scene.Points.size());
  for (const view::SceneVertex& vertex : scene.Vertices) {
    for (const uint16_t bone : vertex.Bones) need(bone < std::max<size_t>(scene.Bones.size(), 1));
  }
  for (const view::SceneDraw& draw : scene.Draws) {
    need(draw.FirstIndex >= 0 && draw.FirstIndex + draw.IndexCount <= static_cast<int64_t>(scene.Indices.size()));
    need(scene.MaterialOf(draw, 0) < static_cast<int32_t>(scene.Materials.size()));
  }
  for (const view::SceneHull& hull : scene.Hulls) {
    for (const uint32_t index : hull.Indices) need(index < hull.Points.size());
  }
}

/// The files of an input, each under any name with its ending.
class InputFiles : public core::FileSource {
 public:
  explicit InputFiles(const DecompileInput& input) : m_input(input) {}
  std::optional<core::FileImage> Read(const std::string& name, std::string*) const override {
    const std::string* bytes = Find(name);
    if (bytes == nullptr) return std::nullopt;
    return core::FileImage::FromBytes(name, std::as_bytes(std::span(*bytes)));
  }
  bool ReadStart(const std::string&, std::span<std::byte>) const override { return false; }
  bool Holds(const std::string& name) const override { return Find(name) != nullptr; }
  std::optional<std::string> FindBeside(const std::string& name) const override {
    return Holds(name) ? std::optional(name) : std::nullopt;
  }
  std::optional<std::string> FindElsewhere(const std::string&) const override { return std::nullopt; }
  std::optional<std::string> FindGameFile(const std::string&, const std::string& inside) const override {
    return inside.ends_with(".mdl") ? std::optional(inside) : std::nullopt;  // the same model, under another name
  }

 private:
  const std::string* Find(const std::string& name) const {
    for (size_t i = 0; i < m_input.Files.size(); ++i) {
      if (name.ends_with(DecompileInput::Extensions[i]) && !m_input.Files[i].empty()) return &m_input.Files[i];
    }
    return nullptr;
  }

  const DecompileInput& m_input;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto input = DecompileInput::Unpack({reinterpret_cast<const char*>(data), size});
  const InputFiles files(input);
  tests::RecordingTroubles troubles;
  const auto scene = view::MakeScene("models/cube.mdl", troubles, files);
  if (!scene) return 0;
  Check(*scene);
  view::ScenePose pose(*scene);
  view::ViewState state = view::FirstViewOf(*scene, 1);
  const auto sequences = static_cast<int32_t>(std::min<size_t>(scene->Sequences.size(), 4));
  for (int32_t s = 0; s < sequences; ++s) {
    pose.Set({.Sequence = s,
              .Cycle = 0.6f,
              .PoseParameters = {0.3f, 0.5f},
              .Layers = {{sequences - 1, 1, 0.5f}},
              .Seconds = 0.7f + 0.1f * static_cast<float>(s),
              .Swings = true});
  }
  std::vector<view::ScenePoint> points;
  view::FlexPoints(*scene, view::FlexWeights(*scene, {}), points);
  view::Advance(*scene, state, 0.1f);
  return 0;
}
