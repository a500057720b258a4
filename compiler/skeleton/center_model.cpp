#include "compiler/skeleton/center_model.h"

#include <algorithm>
#include <optional>

#include "compiler/skeleton/source_placement.h"

namespace tarnwick::compiler {

using model::Vec3;

namespace {

struct Box {
  Vec3 Least, Most;

  [[nodiscard]] Vec3 Middle() const {
    const auto middle = [](float a, float b) { return static_cast<float>((double{a} + double{b}) / 2); };
    return {middle(Least.x, Most.x), middle(Least.y, Most.y), middle(Least.z, Most.z)};
  }
};

void Extend(std::optional<Box>& box, const Vec3& p) {
  if (!box) box = Box{p, p};
  box->Least = {std::min<float>(box->Least.x, p.x), std::min<float>(box->Least.y, p.y),
                std::min<float>(box->Least.z, p.z)};
  box->Most = {std::max<float>(box->Most.x, p.x), std::max<float>(box->Most.y, p.y), std::max<float>(box->Most.z, p.z)};
}

std::optional<Box> BoxOfMeshes(const CompileContext& context, const CompilePlan& plan) {
  std::optional<Box> box;
  for (const PlanBodyPart& part : plan.BodyParts) {
    for (const PlanModel& model : part.Models) {
      const smd::SmdSource* source = context.Source(model.Mesh.Source);
      if (source == nullptr) continue;
      const auto placement = PlacementOf(model.Mesh);
      const float scale = model.Mesh.Scale;
      for (const smd::SourceCorner& corner : source->Corners) {
        const Vec3 point = {corner.Position.X * scale, corner.Position.Y * scale, corner.Position.Z * scale};
        Extend(box, placement ? placement->Apply(point) : point);
      }
    }
  }
  return box;
}

}  // namespace

void CenterModel(const CompileContext& context, CompilePlan& plan) {
  const auto box = BoxOfMeshes(context, plan);
  if (!box) return;
  const Vec3 middle = box->Middle();
  const auto move = [&](Vec3& place) { place = {place.x - middle.x, place.y - middle.y, place.z - middle.z}; };
  for (PlanBodyPart& part : plan.BodyParts) {
    for (PlanModel& model : part.Models) move(model.Mesh.Origin);
  }
  for (PlanLod& lod : plan.Lods) {
    for (PlanReplacement& replacement : lod.Replacements) move(replacement.Mesh.Origin);
  }
  for (CompilePlan::Motion& motion : plan.Motions) move(motion.Settings.Origin);
  if (plan.Collision) {
    move(plan.Collision->Mesh.Origin);
    for (auto& [use, words] : plan.Collision->MorePieces) move(use.Origin);
  }
  for (PlanAttachment& attachment : plan.Attachments) {
    if (plan.StaticProp || attachment.Absolute || attachment.Bone.empty()) move(attachment.Settings.Origin);
  }
  PlanAttachment origin;
  origin.Name = "placementOrigin";
  move(origin.Position);
  plan.Attachments.push_back(std::move(origin));
}

}  // namespace tarnwick::compiler
