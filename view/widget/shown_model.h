#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "archives/content_files.h"
#include "core/trouble.h"
#include "view/materials/material.h"
#include "view/materials/material_files.h"
#include "view/materials/texture_cache.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

/// A model that was loaded to be shown, with its materials.
struct ShownModel {
  std::shared_ptr<const Scene> Model = {};            // null if it could not be read
  std::shared_ptr<const MaterialSet> Materials = {};  // never null where Model is not
  size_t TextureBytes = 0;                            // of all textures, each counted once
  std::vector<core::Trouble> Troubles = {};           // of the model and its companions, in their order
  std::string Error = {};                             // without a Model: why, for people
};

/// What somebody who looks at the model has to know: that it has no mesh, that parts of it could not be read, that
/// materials are missing. "" for nothing. A mesh (.smd) may be without materials.
std::string NoticeOf(const ShownModel& model);

/// Loads models one after the other, on any thread; keeps the game's places from one to the next.
class ModelSource {
 public:
  /// Textures live as long as a model that was loaded has them.
  ModelSource() : m_textures(0) {}
  /// Keeps up to `mostTextureBytes` of textures too, whose levels above `largestSide` are passed over (0: none is).
  ModelSource(size_t mostTextureBytes, int largestSide) : m_textures(mostTextureBytes, largestSide) {}

  /// The model (.mdl) or the mesh (.smd) at `path`, or under a name in an archive or the game; its materials from the
  /// game in `gameDirectory` ("" for none) too.
  ShownModel Load(const std::string& path, const std::string& gameDirectory);

  /// The files that `path` is shown from, for whoever watches them.
  static std::vector<std::string> FilesOf(const std::string& path);

 private:
  /// What is wrong with a place of the game spoils no model.
  struct Unheard : core::TroubleSink {
    void Tell(const core::Trouble&) override {}
  };

  std::mutex m_lock;
  Unheard m_unheard;
  std::unique_ptr<archives::ContentFiles> m_content;
  TextureCache m_textures;
};

}  // namespace tarnwick::view
