#include <algorithm>

#include "core/paths.h"
#include "model/companion_files.h"
#include "model/phy_file.h"
#include "model/phy_values.h"
#include "view/scene/frame_source.h"
#include "view/scene/model_parts.h"
#include "view/scene/model_values.h"

namespace tarnwick::view {

namespace {

int32_t FindBone(const Scene& scene, std::string_view name) {
  const auto found = std::find_if(scene.Bones.begin(), scene.Bones.end(),
                                  [&](const SceneBone& bone) { return core::EqualIgnoringCase(bone.Name, name); });
  return found == scene.Bones.end() ? -1 : static_cast<int32_t>(found - scene.Bones.begin());
}

/// From where the points of a single model's hull stand to the space of its first bone: such points stand in the space
/// of the model as the first frame of its first animation poses it.
Matrix34 FirstFrameToBone(const Scene& scene) {
  if (scene.Bones.empty()) return {};
  const SceneBone& root = scene.Bones.front();
  Matrix34 placed =
      MatrixOf(scene.RestTurn * root.Rotation, TurnDirection(MatrixOf(scene.RestTurn, {}), root.Position));
  const SceneSequence* first = scene.Sequences.empty() ? nullptr : &scene.Sequences.front();
  const bool hasFrame = first != nullptr && !first->Animations.empty() && scene.Frames != nullptr &&
                        !scene.Animations[static_cast<size_t>(first->Animations.front())].IsDelta;
  if (hasFrame) {
    std::vector<BonePose> frame(scene.Bones.size());
    scene.Frames->Read(first->Animations.front(), 0, frame);
    placed = MatrixOf(frame.front().Rotation, frame.front().Position);
  }
  return InverseOf(placed);
}

}  // namespace

void TakeHulls(model::ModelReader& reader, const core::FileImage& file, Scene& scene) {
  const auto phy = model::ReadPhyFile(file.View(), file.Path(), reader.Troubles());
  if (!phy) return;
  model::CheckChecksum(reader, file.Path(), static_cast<int32_t>(phy->Checksum));
  const model::PhyValues values =
      model::TakePhyValues(phy->Text, static_cast<int64_t>(phy->Solids.size()), file.Path(), reader.Troubles());
  const auto nameOf = [&](size_t solid) { return solid < values.Solids.size() ? values.Solids[solid].Name : ""; };
  const bool isJoined = phy->Solids.size() > 1 || (phy->Solids.size() == 1 && FindBone(scene, nameOf(0)) >= 0);
  const Matrix34 toFirstBone = isJoined ? Matrix34{} : FirstFrameToBone(scene);
  for (size_t s = 0; s < phy->Solids.size(); ++s) {
    if (!phy->Solids[s]) continue;
    const std::string name = nameOf(s);
    for (const model::PhyPiece& piece : phy->Solids[s]->Pieces) {
      SceneHull hull{name, static_cast<int32_t>(s), scene.Bones.empty() ? -1 : 0, {}, {}};
      if (isJoined) {
        hull.Bone = FindBone(scene, name);
        if (hull.Bone < 0) hull.Bone = BoneOrNone(piece.BoneNumber - 1, scene.Bones.size());
      }
      // The points of a solid are shared by its pieces: each takes those that it uses.
      const std::vector<model::Vec3>& points = phy->Solids[s]->Points;
      std::vector<uint32_t> places(points.size(), UINT32_MAX);
      for (const model::PhyCorners& corners : piece.Triangles) {
        for (const uint16_t corner : corners) {
          if (places[corner] == UINT32_MAX) {
            places[corner] = static_cast<uint32_t>(hull.Points.size());
            hull.Points.push_back(TransformPoint(toFirstBone, Finite(model::PhyToModel(points[corner]))));
          }
          hull.Indices.push_back(places[corner]);
        }
      }
      scene.Hulls.push_back(std::move(hull));
    }
  }
}

}  // namespace tarnwick::view
