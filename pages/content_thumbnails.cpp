#include "pages/content_thumbnails.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "archives/folded_text.h"
#include "textures/pixel_rows.h"
#include "textures/vtf_file.h"
#include "view/materials/material_text.h"
#include "view/renderer/offscreen.h"
#include "view/renderer/renderer.h"
#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"
#include "view/widget/shown_model.h"

namespace tarnwick::pages {

using archives::ContentKind;

namespace {

constexpr uint64_t LargestFile = 64u << 20;    // that is read for a small picture
constexpr int64_t LargestImage = 2048 * 2048;  // pixels that are decoded for it
constexpr size_t KeptTextures = 32u << 20;     // bytes of models' textures, which neighbours share
constexpr int TextureSide = 128;
constexpr float Filled = 0.94f;  // of the picture by the model

/// The keys by which a material names what gives it its colours, the best first: eyes and water have no base texture.
constexpr std::array<std::string_view, 5> ColourKeys = {"$basetexture", "$iris", "%tooltexture", "$hdrbasetexture",
                                                        "$normalmap"};

std::string_view TextOf(const core::FileImage& image) {
  return {reinterpret_cast<const char*>(image.Bytes().data()), image.Bytes().size()};
}

}  // namespace

QImage TexturePicture(core::ImageView file, int side, bool alpha, std::string& reason) {
  const auto vtf = textures::VtfFile::Open(file, reason);
  if (!vtf) return {};
  const textures::VtfInfo& info = vtf->Info();
  // The smallest level that is not smaller than the picture.
  int mip = 0;
  while (mip + 1 < info.MipLevels &&
         std::max(textures::MipSize(info.Width, mip + 1), textures::MipSize(info.Height, mip + 1)) >= side) {
    ++mip;
  }
  const textures::StoredImage image{info.Format, textures::MipSize(info.Width, mip),
                                    textures::MipSize(info.Height, mip), vtf->Image({.Mip = mip})};
  if (int64_t{image.Width} * image.Height > LargestImage) {
    reason = "it has no small level";
    return {};
  }
  const textures::PixelLayout layout = textures::LayoutFor(image);
  QImage picture(image.Width, image.Height,
                 layout == textures::PixelLayout::Bgra32 ? QImage::Format_ARGB32 : QImage::Format_BGR888);
  if (picture.isNull()) return {};
  textures::DecodeRows(image, 0, image.Height, layout, picture.bits(), picture.bytesPerLine());
  if (layout == textures::PixelLayout::Bgr24 || !alpha)
    picture = std::move(picture).convertToFormat(QImage::Format_RGB32);
  if (std::max(picture.width(), picture.height()) <= side) return picture;
  return picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

std::optional<core::FileImage> TextureThumbnails::Read(uint32_t file) const {
  std::string ignored;
  return m_index->Size(file) > LargestFile ? std::nullopt : m_index->Read(file, ignored);
}

/// The file of that name that goes with `owner`: in the same place, in another one, or in the game.
std::optional<core::FileImage> TextureThumbnails::ReadFor(uint32_t owner, const std::string& name) const {
  auto found = m_index->Find(name, m_index->PlaceOf(owner));
  if (!found) found = m_index->Find(name);
  if (found) return Read(*found);
  const auto elsewhere = m_elsewhere.FindGameFile(m_index->FullName(owner), name);
  return elsewhere ? m_elsewhere.Read(*elsewhere, nullptr) : std::nullopt;
}

/// The texture of a material, and whether its alpha lets light through: else it is but a mask of something.
std::optional<core::FileImage> TextureThumbnails::BaseTexture(uint32_t material, bool& alpha) const {
  const auto image = Read(material);
  if (!image || image->Bytes().size() > view::LargestMaterialText) return std::nullopt;
  const auto said = view::ReadMaterialText(TextOf(*image), m_index->Name(material), [&](const std::string& name) {
    return view::MaterialFile{.Image = ReadFor(material, "materials/" + name)};
  });
  alpha = said.IsSet("$translucent") || said.IsSet("$alphatest") || said.IsSet("$additive");
  for (const std::string_view key : ColourKeys) {
    std::string name = archives::FoldedText(archives::PlainName(said.Value(key)));
    if (name.empty() || name.starts_with("_rt_") || name == "env_cubemap") continue;
    if (!name.starts_with("materials/")) name.insert(0, "materials/");
    if (!name.ends_with(".vtf")) name += ".vtf";
    if (auto texture = ReadFor(material, name)) return texture;
  }
  return std::nullopt;
}

QImage TextureThumbnails::Of(uint32_t file, int side) const {
  bool alpha = true;
  const auto image = m_index->Kind(file) == ContentKind::Material ? BaseTexture(file, alpha) : Read(file);
  std::string ignored;
  return image ? TexturePicture(image->View(), side, alpha, ignored) : QImage();
}

struct ModelThumbnails::Parts {
  view::ModelSource Models{KeptTextures, TextureSide};
  std::unique_ptr<view::Offscreen> Context;  // goes last: the renderer needs it
  std::unique_ptr<view::Renderer> Draws;

  ~Parts() {
    if (Context != nullptr && Context->MakeCurrent()) Draws.reset();
  }

  /// Makes the context current, at first the context itself.
  bool Begin() {
    std::string reason;
    if (Context != nullptr) return Context->MakeCurrent();
    Context = view::Offscreen::Make(reason);
    if (Context != nullptr) Draws = view::Renderer::Make(Context->Functions(), reason);
    return Draws != nullptr;
  }

  QImage Draw(const view::Scene& scene, const view::MaterialSet& materials, int side) {
    view::ViewState state = view::FirstViewOf(scene, 1);
    state.IsPlaying = false;
    state.Cycle = 0;
    state.Extras = {};
    state.Extras.Grid = false;
    state.FixedLod = 0;
    // The pattern that stands for missing materials would hide the shape of so small a model.
    const bool plain = std::all_of(materials.Materials.begin(), materials.Materials.end(),
                                   [](const view::Material& material) { return material.Missing; });
    if (plain) state.Mode = view::ShadingMode::Shaded;
    view::ScenePose pose(scene);
    pose.Set(view::PoseOf(state));
    const view::Box box = view::PosedBox(scene, pose.SkinMatrices(), state.BodyGroups, 0);
    if (box.IsEmpty()) return {};
    state.Eye.Yaw = 30;
    state.Eye.Pitch = 15;
    state.Eye.Fit(box, 1, Filled);
    state.LightYaw = state.Eye.Yaw + 35;
    state.LightPitch = 45;
    std::string reason;
    view::DrawTarget target{.Framebuffer = Context->Framebuffer(side, side, reason), .Width = side, .Height = side};
    if (target.Framebuffer == 0) return {};
    Draws->Load(scene, materials);
    Draws->Draw(state, pose, target);
    Draws->Unload();
    const textures::Picture picture = Context->Pixels();
    QImage image(picture.Width, picture.Height, QImage::Format_ARGB32);
    for (int row = 0; !image.isNull() && row < picture.Height; ++row) {
      const size_t width = static_cast<size_t>(picture.Width);
      std::memcpy(image.scanLine(row), picture.Pixels.data() + static_cast<size_t>(row) * width,
                  width * sizeof(textures::Bgra));
    }
    return image;
  }
};

ModelThumbnails::ModelThumbnails() : m_parts(std::make_unique<Parts>()) {}

ModelThumbnails::~ModelThumbnails() = default;

QImage ModelThumbnails::Of(const std::string& name, const std::string& gameDirectory, int side) {
  if (!m_canDraw) return {};
  const view::ShownModel shown = m_parts->Models.Load(name, gameDirectory);
  if (shown.Model == nullptr) return {};
  m_canDraw = m_parts->Begin();
  if (!m_canDraw) return {};
  QImage image = m_parts->Draw(*shown.Model, *shown.Materials, side);
  m_parts->Context->Release();
  return image;
}

}  // namespace tarnwick::pages
