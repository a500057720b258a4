#pragma once

#include <QImage>
#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "archives/content_files.h"
#include "archives/content_index.h"
#include "core/image_view.h"
#include "core/trouble.h"

namespace tarnwick::pages {

/// The picture of a texture file, its proportions kept, in a square of `side` pixels, as if it were opaque without
/// `alpha`. Null, with `reason`, if it cannot be decoded.
QImage TexturePicture(core::ImageView file, int side, bool alpha, std::string& reason);

/// Makes small pictures of an index's textures and materials. Several threads may ask at once.
class TextureThumbnails {
 public:
  /// A texture that a material names and the index lacks is looked for in the game of `gameDirectory` ("" for none).
  TextureThumbnails(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory)
      : m_index(std::move(index)), m_elsewhere(gameDirectory, m_unheard) {}

  /// The picture of a texture, or of the texture that gives a material its colours, in a square of `side` pixels. Null
  /// if it cannot be had.
  QImage Of(uint32_t file, int side) const;

 private:
  /// What is wrong with a place of the game is told where its files are listed.
  struct Unheard : core::TroubleSink {
    void Tell(const core::Trouble&) override {}
  };

  std::optional<core::FileImage> Read(uint32_t file) const;
  std::optional<core::FileImage> ReadFor(uint32_t owner, const std::string& name) const;
  std::optional<core::FileImage> BaseTexture(uint32_t material, bool& alpha) const;

  const std::shared_ptr<const archives::ContentIndex> m_index;
  Unheard m_unheard;
  const archives::ContentFiles m_elsewhere;
};

/// Draws small pictures of models with their materials, without a display. One thread at a time may ask, though not
/// always the same one.
class ModelThumbnails {
 public:
  ModelThumbnails();
  ~ModelThumbnails();

  /// The picture of the model of that name, whole, on nothing, in a square of `side` pixels; its materials also from
  /// the game in `gameDirectory`. Null if it has nothing to see, and where no renderer can be had.
  QImage Of(const std::string& name, const std::string& gameDirectory, int side);
  /// Whether a renderer can be had, as far as is known.
  bool CanDraw() const { return m_canDraw; }

 private:
  struct Parts;
  std::unique_ptr<Parts> m_parts;
  std::atomic<bool> m_canDraw = true;
};

}  // namespace tarnwick::pages
