#include "smd/skeleton_text.h"

namespace tarnwick::smd {

SkeletonText FormatSkeleton(std::span<const Node> nodes) {
  SkeletonText text;
  core::TextWriter names(text.NodeLines);
  core::TextWriter bones(text.BoneLines);
  int64_t number = 0;
  for (const Node& node : nodes) {
    names.Format("  %d \"%s\" %d\n", number, node.Name, node.Parent);
    bones.Format("  %d %2.6f %2.6f %2.6f %2.6f %2.6f %2.6f\n", number, node.Position.X, node.Position.Y,
                 node.Position.Z, node.Rotation.X, node.Rotation.Y, node.Rotation.Z);
    ++number;
  }
  names.Flush();
  bones.Flush();
  text.BoneNonFinite = bones.NonFiniteCount();
  return text;
}

void WriteReferenceHead(core::TextWriter& writer, const SkeletonText& skeleton) {
  writer.Text("version 1\nnodes\n");
  writer.Raw(skeleton.NodeLines);
  writer.Text("end\nskeleton\ntime 0\n");
  writer.Raw(skeleton.BoneLines);
  writer.CountNonFinite(skeleton.BoneNonFinite);
  writer.Text("end\ntriangles\n");
}

std::string AnimationHead(std::span<const Node> nodes) {
  std::string head;
  core::TextWriter writer(head);
  writer.Text("version 1\nnodes\n");
  int64_t number = 0;
  for (const Node& node : nodes) writer.Format("%3d \"%s\" %d\n", number++, node.Name, node.Parent);
  writer.Text("end\nskeleton\n");
  writer.Flush();
  return head;
}

}  // namespace tarnwick::smd
