#include "smd/vta_writer.h"

namespace tarnwick::smd {

VtaWriter::VtaWriter(core::TextWriter& writer, const SkeletonText& skeleton, int32_t frameCount) : m_writer(writer) {
  m_writer.Text("version 1\nnodes\n");
  m_writer.Raw(skeleton.NodeLines);
  m_writer.Text("end\nskeleton\n");
  for (int32_t time = 0; time <= frameCount; ++time) {
    m_writer.Format("time %d\n", time);
    m_writer.Raw(skeleton.BoneLines);
    m_writer.CountNonFinite(skeleton.BoneNonFinite);
  }
  m_writer.Text("end\nvertexanimation\n");
}

void VtaWriter::BeginBase() {
  m_writer.Text("time 0\n");
}

void VtaWriter::BeginFrame(int32_t number, std::string_view name) {
  m_writer.Format("time %d // %s\n", number, name);
}

void VtaWriter::Vertex(int64_t number, const Triple& position, const Triple& normal) {
  m_writer.Raw("    ");
  m_writer.Integer(number);
  for (const float value : {position.X, position.Y, position.Z, normal.X, normal.Y, normal.Z}) {
    m_writer.Char(' ');
    m_writer.Float6(value);
  }
  m_writer.Raw(core::PlatformLineEnd);
}

void VtaWriter::End() {
  m_writer.Text("end\n");
}

}  // namespace tarnwick::smd
