#include "smd/skeleton_text.h"

namespace tarnwick::smd {

SkeletonText FormatSkeleton(std::span<const Node> nodes) {
  SkeletonText text;
  core::TextWriter names(text.NodeLines);
  core::TextWriter bones(text.BoneLines);
  int64_t number = 0;
  for (const Node& node : nodes) {
    names.Text("  ");
    names.Integer(number);
    names.Text(" \"");
    names.Text(node.Name);
    names.Text("\" ");
    names.Integer(node.Parent);
    names.Text("\n");
    bones.Text("  ");
    bones.Integer(number++);
    for (const float value :
         {node.Position.X, node.Position.Y, node.Position.Z, node.Rotation.X, node.Rotation.Y, node.Rotation.Z}) {
      bones.Char(' ');
      bones.Float6(value);
    }
    bones.Text("\n");
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
