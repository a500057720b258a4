#include "decompiler/stages/reference_skeleton.h"

#include <vector>

namespace tarnwick::decompiler {

namespace {

/// Bytes of a bone's two lines without its name, at the least.
constexpr int64_t BoneCost = 80;

}  // namespace

std::shared_ptr<const smd::SkeletonText> FormatReferenceSkeleton(JobContext& job) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return nullptr;
  int64_t size = 0;
  for (const std::string_view name : skeleton->Names) size += static_cast<int64_t>(name.size()) + BoneCost;
  if (!job.Spend(size)) return nullptr;

  std::vector<smd::Node> nodes;
  nodes.reserve(skeleton->Names.size());
  for (const auto bone : skeleton->Bones) {
    nodes.push_back({skeleton->Names[nodes.size()],
                     bone->Parent,
                     {bone->Position.x, bone->Position.y, bone->Position.z},
                     {bone->Angles.x, bone->Angles.y, bone->Angles.z}});
  }
  return std::make_shared<const smd::SkeletonText>(smd::FormatSkeleton(nodes));
}

}  // namespace tarnwick::decompiler
