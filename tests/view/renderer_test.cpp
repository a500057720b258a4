#include "view/renderer/renderer.h"

#include <gmock/gmock.h>

#include <cmath>

#include "support/drawing.h"
#include "support/model_builder.h"
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"
#include "view/materials/material.h"
#include "view/renderer/gl_table.h"
#include "view/renderer/offscreen.h"
#include "view/renderer/overlay.h"
#include "view/scene/make_scene.h"
#include "view/scene/view_state.h"

namespace tarnwick::view {
namespace {

using textures::Bgra;
using textures::Picture;

constexpr int Width = 200, Height = 160;

Material Coloured(const std::string& name, Bgra colour) {
  Material material;
  material.Name = name;
  material.Base = PlainTexture(colour);
  material.Unlit = true;
  return material;
}

/// Draws scenes without a display; is skipped where no context can be had.
class Rendering : public testing::Test {
 protected:
  void SetUp() override {
    std::string reason = tests::WhyNotDrawn();
    if (!reason.empty()) GTEST_SKIP() << reason;
    m_context = Offscreen::Make(reason);
    ASSERT_NE(m_context, nullptr) << reason;
    m_renderer = Renderer::Make(m_context->Functions(), reason);
    ASSERT_NE(m_renderer, nullptr) << reason;
  }
  void TearDown() override { m_renderer.reset(); }

  void LoadSample() { Load(std::string(TARNWICK_SAMPLES) + "/walker.mdl"); }
  void Load(const std::string& path) {
    m_scene = MakeScene(path, m_troubles);
    ASSERT_TRUE(m_scene.has_value());
    m_state = FirstViewOf(*m_scene, float{Width} / Height);
    m_state.Extras = {};
    m_state.Extras.Grid = false;
    m_state.FixedLod = 0;
    m_materials = {};
    for (const std::string& name : m_scene->Materials) {
      m_materials.Materials.push_back(Coloured(name, {40, 160, 250, 255}));
    }
  }

  Picture Draw() {
    std::string reason;
    DrawTarget target{.Width = Width, .Height = Height, .Background = m_background};
    target.Framebuffer = m_context->Framebuffer(Width, Height, reason);
    EXPECT_NE(target.Framebuffer, 0u) << reason;
    m_renderer->Load(*m_scene, m_materials);
    ScenePose pose(*m_scene);
    pose.Set(PoseOf(m_state));
    m_counts = m_renderer->Draw(m_state, pose, target);
    return m_context->Pixels();
  }

  /// Where the triangles' corners stand in the picture: by a way of its own, not that of the shader.
  std::vector<Vec3> ProjectedCorners() const {
    ScenePose pose(*m_scene);
    pose.Set(PoseOf(m_state));
    std::vector<ScenePoint> points = m_scene->Points;
    std::vector<Vec3> corners;
    for (const SceneDraw& draw : m_scene->Draws) {
      if (!m_scene->IsDrawn(draw, m_state.BodyGroups, 0)) continue;
      for (int64_t i = draw.FirstIndex; i < draw.FirstIndex + draw.IndexCount; ++i) {
        const uint32_t vertex = m_scene->Indices[static_cast<size_t>(i)];
        const ScenePoint at = SkinPoint(points[vertex], m_scene->Vertices[vertex], pose.SkinMatrices());
        corners.push_back(m_state.Eye.Project(at.Position, Width, Height));
      }
    }
    return corners;
  }

  std::unique_ptr<Offscreen> m_context;
  std::unique_ptr<Renderer> m_renderer;
  tests::RecordingTroubles m_troubles;
  std::optional<Scene> m_scene;
  ViewState m_state;
  MaterialSet m_materials;
  std::array<float, 4> m_background{0, 0, 0, 0};
  DrawCounts m_counts;
};

/// Whether the pixel (x, y) lies in the triangle, or at most `slack` pixels beside it.
bool IsNear(double x, double y, const Vec3* corners, double slack) {
  double nearest = 1e9;
  bool left = false, right = false;
  for (int k = 0; k < 3; ++k) {
    const Vec3 &a = corners[k], &b = corners[(k + 1) % 3];
    const double dx = double{b.X} - double{a.X}, dy = double{b.Y} - double{a.Y};
    const double px = x - double{a.X}, py = y - double{a.Y};
    const double side = dx * py - dy * px;
    (side < 0 ? left : right) = true;
    const double length = dx * dx + dy * dy;
    const double along = length > 0 ? std::min(1.0, std::max(0.0, (px * dx + py * dy) / length)) : 0;
    nearest = std::min(nearest, std::hypot(px - along * dx, py - along * dy));
  }
  return !(left && right) || nearest <= slack;
}

size_t Covered(const Picture& picture) {
  return static_cast<size_t>(
      std::count_if(picture.Pixels.begin(), picture.Pixels.end(), [](Bgra pixel) { return pixel.A > 0; }));
}

TEST_F(Rendering, CoversWhereTheVerticesProjectAndNothingElse) {
  LoadSample();
  for (const float yaw : {0.0f, 75.0f, 200.0f}) {
    for (const int32_t sequence : {-1, 0}) {
      m_state.Sequence = sequence;
      m_state.Cycle = 0.4f;
      m_state.Eye.Yaw = yaw;
      m_state.Eye.Pitch = 20;
      const Picture picture = Draw();
      const std::vector<Vec3> corners = ProjectedCorners();
      ASSERT_GT(corners.size(), 30u);
      EXPECT_EQ(m_counts.Triangles, corners.size() / 3);
      const auto isCovered = [&](int x, int y) {
        return x >= 0 && y >= 0 && x < Width && y < Height && picture.Pixels[static_cast<size_t>(y * Width + x)].A > 0;
      };
      for (const Vec3& corner : corners) {
        const int x = static_cast<int>(std::floor(corner.X)), y = static_cast<int>(std::floor(corner.Y));
        bool covered = false;
        for (int dy = -1; dy <= 1; ++dy) {
          for (int dx = -1; dx <= 1; ++dx) covered = covered || isCovered(x + dx, y + dy);
        }
        EXPECT_TRUE(covered) << "yaw " << yaw << ", sequence " << sequence << ": " << corner.X << ", " << corner.Y;
      }
      size_t outside = 0;
      for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
          if (!isCovered(x, y)) continue;
          bool inside = false;
          for (size_t i = 0; i + 2 < corners.size() && !inside; i += 3)
            inside = IsNear(x + 0.5, y + 0.5, &corners[i], 1);
          outside += inside ? 0 : 1;
        }
      }
      EXPECT_EQ(outside, 0u) << "yaw " << yaw << ", sequence " << sequence;
      EXPECT_GT(Covered(picture), 500u);
    }
  }
}

TEST_F(Rendering, LooksAtTheOutsideOfTheModel) {
  LoadSample();
  // With its far sides cut away the model covers as much as with all of them; with its near sides, too, but farther
  // off.
  m_state.Mode = ShadingMode::Shaded;
  const Picture culled = Draw();
  m_state.Mode = ShadingMode::Textured;
  for (Material& material : m_materials.Materials) material.NoCull = true;
  EXPECT_NEAR(static_cast<double>(Covered(culled)), static_cast<double>(Covered(Draw())), 20);
}

TEST_F(Rendering, KeepsTheBackgroundThatItIsGiven) {
  LoadSample();
  const Picture clear = Draw();
  EXPECT_EQ(clear.Pixels[0], Bgra{}) << "nothing behind the model";
  // Edges are not darkened by what is not there: their colour is that of the model.
  for (const Bgra& pixel : clear.Pixels) {
    if (pixel.A == 0) continue;
    EXPECT_NEAR(pixel.R, 250, 4);
    EXPECT_NEAR(pixel.G, 160, 4);
  }
  EXPECT_TRUE(std::any_of(clear.Pixels.begin(), clear.Pixels.end(), [](Bgra p) { return p.A > 0 && p.A < 255; }))
      << "edges are anti-aliased";
  m_background = {0, 1, 0, 1};
  EXPECT_EQ(Draw().Pixels[0], (Bgra{0, 255, 0, 255}));
  m_state.Background = ViewColor{1, 0, 0, 1};
  EXPECT_EQ(Draw().Pixels[0], (Bgra{0, 0, 255, 255}));
  m_state.Background.reset();

  // The renderer relies on no state and leaves none: the same picture again.
  EXPECT_EQ(Draw().Pixels, Draw().Pixels);
}

/// A model that is one triangle before the camera, with two skins.
class DrawnTriangle : public Rendering {
 protected:
  void SetUp() override {
    Rendering::SetUp();
    if (IsSkipped()) return;
    Load(tests::ModelBuilder{.Textures = {"red", "blue"}, .SkinFamilies = {{0, 1}, {1, 0}}}.Write(m_folder.Path()));
    m_materials.Materials = {Coloured("red", {0, 0, 255, 255}), Coloured("blue", {255, 0, 0, 255})};
    for (Material& material : m_materials.Materials) material.NoCull = true;
    m_background = {0, 0, 0, 1};
    m_state.Sequence = -1;
    ScenePose pose(*m_scene);
    // Straight at the middle of the triangle, from its side.
    const SceneDraw& draw = m_scene->Draws.at(0);
    Vec3 corners[3];
    for (int64_t k = 0; k < 3; ++k) {
      const uint32_t vertex = m_scene->Indices[static_cast<size_t>(draw.FirstIndex + k)];
      corners[k] = SkinPoint(m_scene->Points[vertex], m_scene->Vertices[vertex], pose.SkinMatrices()).Position;
    }
    const Vec3 outward = Unit(Cross(corners[1] - corners[0], corners[2] - corners[0]));
    m_state.Eye.Target = (corners[0] + corners[1] + corners[2]) * (1.0f / 3);
    m_state.Eye.Yaw = std::atan2(outward.Y, outward.X) * 57.29578f;
    m_state.Eye.Pitch = std::asin(outward.Z) * 57.29578f;
  }
  Bgra Middle() { return Draw().Pixels[size_t{Height / 2} * Width + Width / 2]; }
  Material& First() { return m_materials.Materials[0]; }

  tests::ScratchFolder m_folder;
};

TEST_F(DrawnTriangle, ChangesWithItsSkin) {
  EXPECT_EQ(Middle(), (Bgra{0, 0, 255, 255}));
  m_state.Skin = 1;
  EXPECT_EQ(Middle(), (Bgra{255, 0, 0, 255}));
  m_state.Skin = 99;
  EXPECT_EQ(Middle(), (Bgra{0, 0, 255, 255}));
}

TEST_F(DrawnTriangle, IsDrawnAsItsMaterialSays) {
  m_background = {0, 1, 0, 1};
  First().Base = PlainTexture({0, 0, 255, 128});
  EXPECT_EQ(Middle(), (Bgra{0, 0, 255, 255})) << "alpha says nothing by itself";
  First().Translucent = true;
  EXPECT_NEAR(Middle().R, 128, 2);
  EXPECT_NEAR(Middle().G, 127, 2);
  First().Translucent = false;
  First().Additive = true;
  EXPECT_EQ(Middle(), (Bgra{0, 255, 255, 255}));
  First().Additive = false;
  First().AlphaTest = true;
  First().AlphaTestReference = 0.6f;
  EXPECT_EQ(Middle(), (Bgra{0, 255, 0, 255}));
  First().AlphaTestReference = 0.4f;
  EXPECT_EQ(Middle(), (Bgra{0, 0, 255, 255}));
  First().Colour = {0.5f, 1, 1};
  EXPECT_NEAR(Middle().R, 128, 2);
  m_state.HighlightedMaterial = 0;
  EXPECT_GT(Middle().G, 40);
  m_state.HighlightedMaterial = -1;

  First() = Coloured("lit", {255, 255, 255, 255});
  First().Unlit = false;
  const uint8_t lit = Middle().G;
  m_state.LightYaw += 180;
  m_state.LightPitch = -m_state.LightPitch;
  const uint8_t dark = Middle().G;
  EXPECT_NE(lit, dark);
  First().SelfIllum = true;
  EXPECT_EQ(Middle(), (Bgra{255, 255, 255, 255}));
  First().NoDraw = true;
  EXPECT_EQ(Middle(), (Bgra{0, 255, 0, 255}));
  m_materials.Materials.clear();  // a list that is too short is filled with the pattern
  const Bgra pattern = Middle();
  EXPECT_EQ(pattern.G, 0);
}

TEST_F(DrawnTriangle, LooksTheSameWhereTheDriverTakesNoBlocks) {
  auto without = std::make_shared<GlFunctions>(*m_context->Functions());
  without->GetStringi = [](GLenum, GLuint) -> const GLubyte* { return nullptr; };
  std::string reason;
  auto other = Renderer::Make(without, reason);
  ASSERT_NE(other, nullptr) << reason;
  First().Translucent = true;
  using textures::PixelFormat;
  for (const PixelFormat format :
       {PixelFormat::Dxt1, PixelFormat::Dxt1OneBitAlpha, PixelFormat::Dxt3, PixelFormat::Dxt5}) {
    SCOPED_TRACE(textures::PixelFormatName(format));
    tests::VtfBuilder file = tests::VtfBuilder().Size(1024, 64).Mips(11).Format(format);
    const std::string bytes = file.Build();
    auto image = core::FileImage::FromBytes("x.vtf", std::as_bytes(std::span(bytes)));
    First().Base = std::make_shared<Texture>(*ReadTexture(std::move(image), 0, reason));
    const Picture blocks = Draw();
    const size_t blockBytes = m_counts.GpuBytes;
    std::swap(m_renderer, other);
    const Picture pixels = Draw();
    std::swap(m_renderer, other);
    EXPECT_LT(blockBytes, m_counts.GpuBytes / 3);
    size_t seen = 0;
    for (size_t i = 0; i < pixels.Pixels.size(); ++i) {
      const Bgra a = pixels.Pixels[i], b = blocks.Pixels[i];
      seen += a != Bgra{0, 0, 0, 255} ? 1u : 0u;
      ASSERT_TRUE(std::abs(a.R - b.R) < 5 && std::abs(a.G - b.G) < 5 && std::abs(a.B - b.B) < 5) << "pixel " << i;
    }
    EXPECT_GT(seen, 100u);
  }
}

TEST_F(DrawnTriangle, IsEdgesAloneAsWireframe) {
  m_background = {0, 0, 0, 0};
  const size_t filled = Covered(Draw());
  m_state.Mode = ShadingMode::Wireframe;
  EXPECT_EQ(Middle(), Bgra{});
  const size_t edges = Covered(Draw());
  EXPECT_GT(edges, 50u);
  EXPECT_LT(edges, filled / 2);
}

TEST_F(DrawnTriangle, HidesNothingFromItsBackWithNoCull) {
  m_state.Eye.Yaw += 180;
  m_state.Eye.Pitch = -m_state.Eye.Pitch;
  EXPECT_EQ(Middle(), (Bgra{0, 0, 255, 255}));
  First().NoCull = false;
  EXPECT_EQ(Middle(), (Bgra{0, 0, 0, 255}));
}

TEST_F(Rendering, DrawsEveryExtraOverTheModel) {
  LoadSample();
  const Picture plain = Draw();
  for (bool ViewExtras::*extra : {&ViewExtras::Bones, &ViewExtras::Attachments, &ViewExtras::Hitboxes,
                                  &ViewExtras::Hulls, &ViewExtras::Boxes, &ViewExtras::Normals, &ViewExtras::Grid}) {
    m_state.Extras.*extra = true;
    EXPECT_NE(Draw().Pixels, plain.Pixels);
    m_state.Extras.*extra = false;
  }
  EXPECT_EQ(Draw().Pixels, plain.Pixels);
}

TEST_F(Rendering, RefusesPicturesThatTheDriverCannotHold) {
  std::string reason;
  EXPECT_EQ(m_context->Framebuffer(1 << 24, 4, reason), 0u);
  EXPECT_THAT(reason, testing::HasSubstr("16777216 by 4"));
  EXPECT_EQ(m_context->Framebuffer(0, 4, reason), 0u);
  EXPECT_NE(m_context->Framebuffer(1, 1, reason), 0u);
}

TEST(Overlays, StandOutAgainstLightAndDark) {
  tests::RecordingTroubles troubles;
  const auto scene = MakeScene(std::string(TARNWICK_SAMPLES) + "/walker.mdl", troubles);
  ASSERT_TRUE(scene.has_value());
  ViewState state = FirstViewOf(*scene, 1);
  state.Extras = {.Hitboxes = true, .Hulls = true, .Boxes = true, .Normals = true, .Grid = true};
  ScenePose pose(*scene);
  pose.Set(PoseOf(state));
  for (const bool onDark : {false, true}) {
    const Overlay overlay = MakeOverlay(*scene, PrepareOverlay(*scene), state, pose, scene->Points, 0, onDark);
    for (const auto* points : {&overlay.Lines, &overlay.TopLines}) {
      ASSERT_FALSE(points->empty());
      for (const OverlayPoint& point : *points) {
        const int bright = (point.Colour[0] * 3 + point.Colour[1] * 6 + point.Colour[2]) / 10;
        ASSERT_TRUE(onDark ? bright > 80 : bright < 150) << bright;
      }
    }
  }
}

TEST(Overlays, OutlineHullsWithoutTheSeamsOfTheirTriangles) {
  SceneHull box;
  for (int i = 0; i < 8; ++i) {
    box.Points.push_back({static_cast<float>(i & 1), static_cast<float>(i >> 1 & 1), static_cast<float>(i >> 2 & 1)});
  }
  box.Indices = {0, 2, 3, 0, 3, 1, 4, 5, 7, 4, 7, 6, 0, 1, 5, 0, 5, 4,
                 2, 6, 7, 2, 7, 3, 0, 4, 6, 0, 6, 2, 1, 3, 7, 1, 7, 5};
  EXPECT_EQ(HullEdges(box).size(), 24u);
}

}  // namespace
}  // namespace tarnwick::view
