#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "view/renderer/gl_functions.h"

namespace tarnwick::view {

struct MaterialSet;
struct Scene;
struct ViewState;
class ScenePose;

/// Where a picture goes and how large it is, in pixels of the device.
struct DrawTarget {
  unsigned Framebuffer = 0;  // the object into which the finished picture is put
  int Width = 0;
  int Height = 0;
  /// Behind the model, where the view's state names no colour: red, green, blue and alpha from 0 to 1, not multiplied.
  /// What is drawn has an alpha of 1, so an alpha of 0 gives the model alone.
  std::array<float, 4> Background = {0, 0, 0, 0};
  float LineWidth = 1;  // of everything that is drawn as lines, in pixels
};

/// What a picture took.
struct DrawCounts {
  size_t Draws = 0;      // calls that draw the mesh
  size_t Triangles = 0;  // in them
  size_t GpuBytes = 0;   // textures and buffers of the scene
};

/// Draws a scene by OpenGL 3.3. All functions, the destructor too, are called while the context is current in which the
/// functions were looked up. Nothing of the context's state is relied on, and nothing is put back but the framebuffer.
class Renderer {
 public:
  /// Null, with `reason`, if the shaders cannot be built.
  static std::unique_ptr<Renderer> Make(std::shared_ptr<const GlFunctions> gl, std::string& reason);
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  /// Takes a scene with the materials of its list, in place of the one before. `scene` must stay where it is until the
  /// next one is loaded, or Unload; the materials may go.
  void Load(const Scene& scene, const MaterialSet& materials);
  /// Takes other materials for the same scene.
  void LoadMaterials(const MaterialSet& materials);
  void Unload();

  /// Draws the scene, anti-aliased, over the whole target: through the camera of `state`, with its skin, body groups,
  /// level of detail, face and extras, but for the names of bones; the bones as `pose` has them, a pose of the scene
  /// that was loaded. Without a scene the background alone.
  DrawCounts Draw(const ViewState& state, const ScenePose& pose, const DrawTarget& target);
  /// The background alone.
  void Clear(const DrawTarget& target);

  /// What the driver calls itself: "llvmpipe (LLVM 15.0.6, 256 bits), 4.5 (Core Profile) Mesa 22.3.6".
  std::string DriverName() const;

 private:
  struct Parts;
  explicit Renderer(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> m_parts;
};

}  // namespace tarnwick::view
