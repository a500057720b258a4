#include "decompiler/reference_skeleton.h"

namespace tarnwick::decompiler {

namespace {

/// Bytes of a bone's two lines without its name, at the least.
constexpr int64_t BoneCost = 80;

}  // namespace

std::shared_ptr<const ReferenceSkeleton> FormatReferenceSkeleton(JobContext& job) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return nullptr;
  int64_t size = 0;
  for (const std::string_view name : skeleton->Names) size += static_cast<int64_t>(name.size()) + BoneCost;
  if (!job.Spend(size)) return nullptr;

  auto formatted = std::make_shared<ReferenceSkeleton>();
  core::TextWriter nodes(formatted->NodeLines);
  core::TextWriter bones(formatted->BoneLines);
  for (int64_t i = 0; i < skeleton->Count(); ++i) {
    const StudioBone& bone = *skeleton->Bones[i];
    nodes.Format("  %d \"%s\" %d\n", i, skeleton->Names[static_cast<size_t>(i)], int32_t{bone.Parent});
    bones.Format("  %d %2.6f %2.6f %2.6f %2.6f %2.6f %2.6f\n", i, float{bone.Position.x}, float{bone.Position.y},
                 float{bone.Position.z}, float{bone.Angles.x}, float{bone.Angles.y}, float{bone.Angles.z});
  }
  nodes.Flush();
  bones.Flush();
  formatted->BoneNonFinite = bones.NonFiniteCount();
  return formatted;
}

}  // namespace tarnwick::decompiler
