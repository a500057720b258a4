#include "view/renderer/renderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "view/materials/material.h"
#include "view/renderer/frame_buffers.h"
#include "view/renderer/gl_table.h"
#include "view/renderer/gpu_mesh.h"
#include "view/renderer/gpu_textures.h"
#include "view/renderer/overlay.h"
#include "view/renderer/shaders.h"
#include "view/scene/face.h"

namespace tarnwick::view {

namespace {

using IndexRanges = std::vector<std::pair<int64_t, int64_t>>;  // first, count

constexpr std::array<float, 3> PlainColour{0.78f, 0.78f, 0.80f};  // of the mode without textures
constexpr std::array<float, 4> Highlight{1.0f, 0.55f, 0.1f, 0.55f};
constexpr float DarkBelow = 0.5f;  // a background's brightness below which lines are light
constexpr float DotPixels = 5;

/// A material ready to be drawn.
struct GpuMaterial {
  Material Says;
  GLuint Base = 0;
  GLuint Bump = 0;
  GLuint SelfIllumMask = 0;
};

/// A draw with what is known of it beforehand.
struct PlacedDraw {
  const SceneDraw* Draw = nullptr;
  Vec3 Centre;
};

Vec3 LightDirection(const ViewState& state) {
  constexpr float Radians = 3.14159265358979f / 180;
  const float yaw = state.LightYaw * Radians, pitch = state.LightPitch * Radians;
  return {std::cos(pitch) * std::cos(yaw), std::cos(pitch) * std::sin(yaw), std::sin(pitch)};
}

}  // namespace

struct Renderer::Parts {
  explicit Parts(std::shared_ptr<const GlFunctions> functions)
      : Gl(std::move(functions)), Frame(*Gl), Mesh(*Gl), Textures(*Gl) {}

  std::shared_ptr<const GlFunctions> Gl;
  std::unique_ptr<ShaderProgram> MeshProgram;
  std::unique_ptr<ShaderProgram> PlainProgram;
  FrameBuffers Frame;
  GpuMesh Mesh;
  GpuTextures Textures;
  GLuint OverlayArray = 0;
  GLuint OverlayBuffer = 0;

  const Scene* Shown = nullptr;
  std::vector<GpuMaterial> Materials;  // of the scene's list; behind them the one for draws without any
  std::vector<PlacedDraw> Draws;
  OverlayParts Ready;
  std::vector<float> FaceWeights;  // by which FacePoints are moved
  std::vector<ScenePoint> FacePoints;

  // Of one picture
  std::array<float, 4> Behind{};
  DrawCounts Counts;

  void Free() {
    Mesh.Free();
    Textures.Free();
    Frame.Free();
    if (OverlayArray != 0) Gl->DeleteVertexArrays(1, &OverlayArray);
    if (OverlayBuffer != 0) Gl->DeleteBuffers(1, &OverlayBuffer);
  }

  void Take(const MaterialSet& materials);
  void MoveFace(const ViewState& state);
  bool Begin(const DrawTarget& target);
  void DrawMesh(const ViewState& state, const ScenePose& pose, const Matrix44& clip, int32_t lod);
  void DrawOpaque(const ViewState& state, int32_t lod);
  void DrawBlended(const ViewState& state, int32_t lod);
  void DrawWires(const ViewState& state, int32_t lod);
  void UseMaterial(size_t number, bool textured, bool lightUp) const;
  void DrawRanges(const IndexRanges& ranges);
  void DrawOverlay(const Overlay& overlay, const Matrix44& clip, const DrawTarget& target, bool onTop);

  size_t MaterialOf(const SceneDraw& draw, int32_t skin) const {
    const int32_t material = Shown->MaterialOf(draw, skin);
    return material >= 0 && static_cast<size_t>(material) + 1 < Materials.size() ? static_cast<size_t>(material)
                                                                                 : Materials.size() - 1;
  }
  static bool IsLitUp(size_t material, const ViewState& state) {
    return state.HighlightedMaterial >= 0 && static_cast<size_t>(state.HighlightedMaterial) == material;
  }
  bool IsBlended(size_t material, const ViewState& state) const {
    return state.Mode == ShadingMode::Textured && Materials[material].Says.Blended();
  }
  bool IsOnDark() const {
    // Behind a picture without a background anything may stand; its lines are dark, as on paper.
    return Behind[3] > 0 && 0.3f * Behind[0] + 0.6f * Behind[1] + 0.1f * Behind[2] < DarkBelow;
  }
};

void Renderer::Parts::Take(const MaterialSet& materials) {
  Textures.Begin();
  Materials.clear();
  Material missing;
  missing.Missing = true;
  for (size_t i = 0; i <= Shown->Materials.size(); ++i) {
    GpuMaterial material{.Says = i < materials.Materials.size() ? materials.Materials[i] : missing};
    Material& says = material.Says;
    material.Base = Textures.Of(says.Base != nullptr ? says.Base : MissingPattern());
    material.Bump = Textures.Of(says.Bump);
    material.SelfIllumMask = Textures.Of(says.SelfIllumMask);
    says.Base = says.Bump = says.SelfIllumMask = nullptr;  // the graphics processor has them now
    Materials.push_back(std::move(material));
  }
  Textures.DropUnused();
}

void Renderer::Parts::MoveFace(const ViewState& state) {
  if (Shown->FlexShapes.empty()) return;
  std::vector<float> weights = FlexWeights(*Shown, state.FlexControllers);
  if (weights == FaceWeights) return;
  FaceWeights = std::move(weights);
  FlexPoints(*Shown, FaceWeights, FacePoints);
  const PointRange range = FlexedRange(*Shown);
  if (range.Count == 0) return;
  Mesh.SetPoints(std::span(FacePoints).subspan(static_cast<size_t>(range.First), static_cast<size_t>(range.Count)),
                 range.First);
}

/// Sets all of the context's state that drawing here relies on, and clears the picture.
bool Renderer::Parts::Begin(const DrawTarget& target) {
  Counts = {};
  if (target.Width < 1 || target.Height < 1 || !Frame.Bind(target.Width, target.Height)) return false;
  const GlFunctions& gl = *Gl;
  gl.Viewport(0, 0, target.Width, target.Height);
  for (const GLenum off :
       std::initializer_list<GLenum>{GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_BLEND, GL_CULL_FACE, GL_FRAMEBUFFER_SRGB,
                                     GL_SAMPLE_ALPHA_TO_COVERAGE, GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_FILL,
                                     GL_PROGRAM_POINT_SIZE, GL_RASTERIZER_DISCARD, GL_PRIMITIVE_RESTART}) {
    gl.Disable(off);
  }
  gl.Enable(GL_MULTISAMPLE);
  gl.Enable(GL_DEPTH_TEST);
  gl.DepthFunc(GL_LEQUAL);
  gl.DepthMask(GL_TRUE);
  gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  gl.CullFace(GL_BACK);
  gl.FrontFace(GL_CCW);
  gl.PolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  gl.LineWidth(std::max(target.LineWidth, 1.0f));
  for (GLuint unit = 0; unit < TextureUnitCount; ++unit) gl.BindSampler(unit, 0);
  const float alpha = Behind[3];
  gl.ClearColor(Behind[0] * alpha, Behind[1] * alpha, Behind[2] * alpha, alpha);
  gl.ClearDepth(1);
  gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  return true;
}

void Renderer::Parts::UseMaterial(size_t number, bool textured, bool lightUp) const {
  const GlFunctions& gl = *Gl;
  const GpuMaterial& material = Materials[number];
  const Material& says = material.Says;
  const auto bind = [&](TextureUnit unit, GLuint object) {
    gl.ActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    gl.BindTexture(GL_TEXTURE_2D, object);
  };
  bind(UnitBase, material.Base);
  // A sampler that is not read still wants a texture.
  bind(UnitBump, material.Bump != 0 ? material.Bump : material.Base);
  bind(UnitSelfIllum, material.SelfIllumMask != 0 ? material.SelfIllumMask : material.Base);

  const ShaderProgram& program = *MeshProgram;
  const auto& colour = textured ? says.Colour : PlainColour;
  program.Set("textured", textured);
  program.Set("lit", !textured || !says.Unlit);
  program.Set("colour", colour[0], colour[1], colour[2], textured ? says.Alpha : 1.0f);
  program.Set("alphaTest", textured && says.AlphaTest);
  program.Set("alphaReference", says.AlphaTestReference);
  program.Set("blended", textured && says.Blended());
  program.Set("additive", textured && says.Additive);
  program.Set("tintByAlpha", textured && says.ColourByBaseAlpha);
  program.Set("hasBump", textured && material.Bump != 0);
  program.Set("selfIllum", textured && says.SelfIllum);
  program.Set("hasSelfIllumMask", material.SelfIllumMask != 0);
  program.Set("selfIllumTint", says.SelfIllumTint[0], says.SelfIllumTint[1], says.SelfIllumTint[2]);
  program.Set("phong", textured && says.Phong);
  program.Set("phongMaskInBase", says.PhongMaskInBase);
  program.Set("phongExponent", says.PhongExponent);
  program.Set("phongTint", says.PhongTint[0] * says.PhongBoost, says.PhongTint[1] * says.PhongBoost,
              says.PhongTint[2] * says.PhongBoost);
  program.Set("flat_", Highlight[0], Highlight[1], Highlight[2], lightUp ? Highlight[3] : 0.0f);
  if (textured && says.NoCull) {
    gl.Disable(GL_CULL_FACE);
  } else {
    gl.Enable(GL_CULL_FACE);
  }
}

void Renderer::Parts::DrawRanges(const IndexRanges& ranges) {
  Mesh.Draw(ranges);
  ++Counts.Draws;
  for (const auto& [first, count] : ranges) Counts.Triangles += static_cast<size_t>(count / 3);
}

void Renderer::Parts::DrawOpaque(const ViewState& state, int32_t lod) {
  std::map<size_t, IndexRanges> byMaterial;
  for (const PlacedDraw& placed : Draws) {
    if (!Shown->IsDrawn(*placed.Draw, state.BodyGroups, lod)) continue;
    const size_t material = MaterialOf(*placed.Draw, state.Skin);
    if (IsBlended(material, state) || Materials[material].Says.NoDraw) continue;
    byMaterial[material].emplace_back(placed.Draw->FirstIndex, placed.Draw->IndexCount);
  }
  for (const auto& [material, ranges] : byMaterial) {
    UseMaterial(material, state.Mode == ShadingMode::Textured, IsLitUp(material, state));
    DrawRanges(ranges);
  }
}

void Renderer::Parts::DrawBlended(const ViewState& state, int32_t lod) {
  const Vec3 eye = state.Eye.Eye(), forward = state.Eye.Forward();
  std::vector<std::pair<float, const PlacedDraw*>> behindOthers;  // by depth
  for (const PlacedDraw& placed : Draws) {
    if (!Shown->IsDrawn(*placed.Draw, state.BodyGroups, lod)) continue;
    const size_t material = MaterialOf(*placed.Draw, state.Skin);
    if (!IsBlended(material, state) || Materials[material].Says.NoDraw) continue;
    behindOthers.emplace_back(Dot(placed.Centre - eye, forward), &placed);
  }
  if (behindOthers.empty()) return;
  std::stable_sort(behindOthers.begin(), behindOthers.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  const GlFunctions& gl = *Gl;
  gl.Enable(GL_BLEND);
  gl.DepthMask(GL_FALSE);
  for (const auto& [depth, placed] : behindOthers) {
    const size_t material = MaterialOf(*placed->Draw, state.Skin);
    UseMaterial(material, state.Mode == ShadingMode::Textured, IsLitUp(material, state));
    const GLenum keep = Materials[material].Says.Additive ? GL_ONE : GL_ONE_MINUS_SRC_ALPHA;
    gl.BlendFuncSeparate(GL_ONE, keep, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    DrawRanges({{placed->Draw->FirstIndex, placed->Draw->IndexCount}});
  }
  gl.DepthMask(GL_TRUE);
  gl.Disable(GL_BLEND);
}

/// The edges of all triangles, those on the far side too.
void Renderer::Parts::DrawWires(const ViewState& state, int32_t lod) {
  const GlFunctions& gl = *Gl;
  const bool alone = state.Mode == ShadingMode::Wireframe;
  std::map<bool, IndexRanges> byHighlight;
  for (const PlacedDraw& placed : Draws) {
    if (!Shown->IsDrawn(*placed.Draw, state.BodyGroups, lod)) continue;
    const size_t material = MaterialOf(*placed.Draw, state.Skin);
    byHighlight[IsLitUp(material, state)].emplace_back(placed.Draw->FirstIndex, placed.Draw->IndexCount);
  }
  gl.PolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  gl.Enable(GL_POLYGON_OFFSET_LINE);
  gl.PolygonOffset(-1, -1);
  const bool light = alone && IsOnDark();
  for (const auto& [lightUp, ranges] : byHighlight) {
    UseMaterial(Materials.size() - 1, false, lightUp);
    if (alone) gl.Disable(GL_CULL_FACE);
    const float grey = light ? 0.9f : 0.12f;
    MeshProgram->Set("flat_", lightUp ? Highlight[0] : grey, lightUp ? Highlight[1] : grey,
                     lightUp ? Highlight[2] : grey, 1.0f);
    DrawRanges(ranges);
  }
  gl.Disable(GL_POLYGON_OFFSET_LINE);
  gl.PolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

void Renderer::Parts::DrawMesh(const ViewState& state, const ScenePose& pose, const Matrix44& clip, int32_t lod) {
  if (Shown->Indices.empty()) return;
  const GlFunctions& gl = *Gl;
  Mesh.SetSkin(pose.SkinMatrices());
  Mesh.Bind();
  MeshProgram->Use();
  MeshProgram->SetMatrix("clip", clip.data());
  const Vec3 eye = state.Eye.Eye(), light = LightDirection(state);
  MeshProgram->Set("eye", eye.X, eye.Y, eye.Z);
  MeshProgram->Set("light", light.X, light.Y, light.Z);
  if (state.Mode != ShadingMode::Wireframe) {
    DrawOpaque(state, lod);
    DrawBlended(state, lod);
  }
  if (state.Mode == ShadingMode::Wireframe || state.WireOverMesh) DrawWires(state, lod);
  gl.Disable(GL_CULL_FACE);
  gl.BindVertexArray(0);
}

void Renderer::Parts::DrawOverlay(const Overlay& overlay, const Matrix44& clip, const DrawTarget& target, bool onTop) {
  const GlFunctions& gl = *Gl;
  PlainProgram->Use();
  PlainProgram->SetMatrix("clip", clip.data());
  gl.BindVertexArray(OverlayArray);
  gl.BindBuffer(GL_ARRAY_BUFFER, OverlayBuffer);
  gl.Enable(GL_BLEND);
  gl.BlendFuncSeparate(GL_ONE, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  gl.DepthMask(GL_FALSE);
  const auto draw = [&](const std::vector<OverlayPoint>& points, GLenum kind) {
    if (points.empty()) return;
    gl.BufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(points.size() * sizeof(OverlayPoint)), points.data(),
                  GL_STREAM_DRAW);
    gl.DrawArrays(kind, 0, static_cast<GLsizei>(points.size()));
  };
  if (onTop) {
    gl.Disable(GL_DEPTH_TEST);
    gl.PointSize(DotPixels * std::max(target.LineWidth, 1.0f));
    draw(overlay.TopTriangles, GL_TRIANGLES);
    draw(overlay.TopLines, GL_LINES);
    draw(overlay.TopDots, GL_POINTS);
  } else {
    draw(overlay.Lines, GL_LINES);
  }
  gl.Enable(GL_DEPTH_TEST);
  gl.DepthMask(GL_TRUE);
  gl.Disable(GL_BLEND);
  gl.BindVertexArray(0);
}

std::unique_ptr<Renderer> Renderer::Make(std::shared_ptr<const GlFunctions> gl, std::string& reason) {
  auto parts = std::make_unique<Parts>(std::move(gl));
  parts->MeshProgram = MakeMeshProgram(*parts->Gl, reason);
  if (parts->MeshProgram == nullptr) return nullptr;
  parts->PlainProgram = MakePlainProgram(*parts->Gl, reason);
  if (parts->PlainProgram == nullptr) return nullptr;
  const GlFunctions& functions = *parts->Gl;
  functions.GenVertexArrays(1, &parts->OverlayArray);
  functions.GenBuffers(1, &parts->OverlayBuffer);
  functions.BindVertexArray(parts->OverlayArray);
  functions.BindBuffer(GL_ARRAY_BUFFER, parts->OverlayBuffer);
  functions.EnableVertexAttribArray(InputPosition);
  functions.VertexAttribPointer(InputPosition, 3, GL_FLOAT, GL_FALSE, sizeof(OverlayPoint), nullptr);
  functions.EnableVertexAttribArray(InputNormal);  // the colour in the plain program
  functions.VertexAttribPointer(InputNormal, 4, GL_UNSIGNED_BYTE, GL_TRUE, sizeof(OverlayPoint),
                                reinterpret_cast<const void*>(offsetof(OverlayPoint, Colour)));
  functions.BindVertexArray(0);
  return std::unique_ptr<Renderer>(new Renderer(std::move(parts)));
}

Renderer::Renderer(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {}

Renderer::~Renderer() {
  m_parts->Free();
}

void Renderer::Load(const Scene& scene, const MaterialSet& materials) {
  Parts& parts = *m_parts;
  parts.Shown = &scene;
  parts.Mesh.Load(scene);
  parts.FaceWeights.clear();
  parts.FacePoints.clear();
  parts.Ready = PrepareOverlay(scene);
  parts.Draws.clear();
  for (const SceneDraw& draw : scene.Draws) {
    Box box;
    for (int64_t i = draw.FirstIndex; i < draw.FirstIndex + draw.IndexCount; ++i) {
      box.Add(scene.Points[scene.Indices[static_cast<size_t>(i)]].Position);
    }
    if (draw.IndexCount > 0) parts.Draws.push_back({&draw, box.IsEmpty() ? Vec3() : box.Centre()});
  }
  parts.Take(materials);
}

void Renderer::LoadMaterials(const MaterialSet& materials) {
  if (m_parts->Shown != nullptr) m_parts->Take(materials);
}

void Renderer::Unload() {
  m_parts->Shown = nullptr;
  m_parts->Draws.clear();
  m_parts->Materials.clear();
  m_parts->Mesh.Free();
  m_parts->Textures.Free();
}

DrawCounts Renderer::Draw(const ViewState& state, const ScenePose& pose, const DrawTarget& target) {
  Parts& parts = *m_parts;
  parts.Behind = target.Background;
  if (state.Background) {
    parts.Behind = {state.Background->Red, state.Background->Green, state.Background->Blue, state.Background->Alpha};
  }
  if (!parts.Begin(target)) return {};
  if (parts.Shown != nullptr) {
    const Scene& scene = *parts.Shown;
    parts.MoveFace(state);
    const float width = static_cast<float>(target.Width), height = static_cast<float>(target.Height);
    const Matrix44 clip = state.Eye.ClipMatrix(width / height);
    const int32_t lod = ShownLod(scene, state, height);
    const std::span<const ScenePoint> points = parts.FacePoints.empty() ? scene.Points : parts.FacePoints;
    const Overlay overlay = MakeOverlay(scene, parts.Ready, state, pose, points, lod, parts.IsOnDark());
    parts.DrawOverlay(overlay, clip, target, false);
    parts.DrawMesh(state, pose, clip, lod);
    parts.DrawOverlay(overlay, clip, target, true);
    parts.Counts.GpuBytes = parts.Mesh.Bytes() + parts.Textures.Bytes();
  }
  parts.Frame.CopyTo(target.Framebuffer);
  return parts.Counts;
}

void Renderer::Clear(const DrawTarget& target) {
  m_parts->Behind = target.Background;
  if (m_parts->Begin(target)) m_parts->Frame.CopyTo(target.Framebuffer);
}

std::string Renderer::DriverName() const {
  const auto text = [this](GLenum what) {
    const GLubyte* said = m_parts->Gl->GetString(what);
    return std::string(said == nullptr ? "" : reinterpret_cast<const char*>(said));
  };
  return text(GL_RENDERER) + ", " + text(GL_VERSION);
}

}  // namespace tarnwick::view
