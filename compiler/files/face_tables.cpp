#include "compiler/files/face_tables.h"

#include "model/face_records.h"

namespace tarnwick::compiler {

void FaceTables::WriteShared(bool withControls) {
  const auto here = [&] { return static_cast<int32_t>(m_writer.Size()); };
  m_header.FlexDescCount = static_cast<int32_t>(m_face.Descriptors.size());
  m_header.FlexDescOffset = here();
  for (const std::string& name : m_face.Descriptors) {
    const int64_t at = m_writer.Append(model::StudioFlexDesc{});
    m_texts.Name(at, at, name);
  }
  m_header.FlexControllerCount = static_cast<int32_t>(m_face.Controllers.size());
  m_header.FlexControllerOffset = here();
  for (const BuiltFlexController& controller : m_face.Controllers) {
    const int64_t at = m_writer.Append(model::StudioFlexController{0, 0, -1, controller.Minimum, controller.Maximum});
    m_texts.Name(at, at, controller.Type);
    m_texts.Name(at + 4, at, controller.Name);
  }
  m_header.FlexRuleCount = static_cast<int32_t>(m_face.Rules.size());
  m_header.FlexRuleOffset = static_cast<int32_t>(m_writer.Reserve<model::StudioFlexRule>(m_face.Rules.size()));
  for (size_t i = 0; i < m_face.Rules.size(); ++i) {
    const int64_t at = m_header.FlexRuleOffset + static_cast<int64_t>(i * sizeof(model::StudioFlexRule));
    const BuiltFlexRule& rule = m_face.Rules[i];
    m_writer.Put(at, model::StudioFlexRule{rule.Descriptor, static_cast<int32_t>(rule.Operations.size()),
                                           static_cast<int32_t>(m_writer.Size() - at)});
    for (const model::StudioFlexOp& operation : rule.Operations) m_writer.Append(operation);
  }
  if (!withControls) return;
  m_header.FlexControlCount = static_cast<int32_t>(m_face.Controls.size());
  m_header.FlexControlOffset = here();
  for (const BuiltFlexControl& control : m_face.Controls) {
    model::StudioFlexControl record = {};
    const int64_t at = m_writer.Size();
    for (int side = 0; side < 2; ++side) {
      const int32_t controller = control.Controllers[side];
      if (controller < 0) continue;
      const int64_t place =
          m_header.FlexControllerOffset + int64_t{controller} * int64_t{sizeof(model::StudioFlexController)};
      record.ControllerOffsets[side] = static_cast<int32_t>(place - at);
    }
    record.IsStereo = control.Controllers[1] >= 0 ? 1 : 0;
    m_writer.Append(record);
    m_texts.Name(at, at, control.Name);
  }
}

void FaceTables::WriteMouths() {
  m_header.MouthCount = static_cast<int32_t>(m_face.Mouths.size());
  m_header.MouthOffset = static_cast<int32_t>(m_writer.Size());
  for (const model::StudioMouth& mouth : m_face.Mouths) m_writer.Append(mouth);
}

int32_t FaceTables::WriteEyeballs(size_t model) {
  if (model >= m_face.Models.size()) return 0;
  for (const model::StudioEyeball& eyeball : m_face.Models[model].Eyeballs) m_writer.Append(eyeball);
  return static_cast<int32_t>(m_face.Models[model].Eyeballs.size());
}

int32_t FaceTables::WriteFlexes(size_t model, size_t mesh) {
  if (model >= m_face.Models.size() || mesh >= m_face.Models[model].MeshFlexes.size()) return 0;
  const std::vector<BuiltFlex>& flexes = m_face.Models[model].MeshFlexes[mesh];
  const int64_t records = m_writer.Reserve<model::StudioFlex>(flexes.size());
  for (size_t i = 0; i < flexes.size(); ++i) {
    const int64_t at = records + static_cast<int64_t>(i * sizeof(model::StudioFlex));
    model::StudioFlex record = flexes[i].Record;
    record.VertAnimCount = static_cast<int32_t>(flexes[i].VertAnims.size());
    record.VertAnimOffset = static_cast<int32_t>(m_writer.Size() - at);
    m_writer.Put(at, record);
    for (const model::StudioVertAnim& moved : flexes[i].VertAnims) m_writer.Append(moved);
  }
  return static_cast<int32_t>(flexes.size());
}

}  // namespace tarnwick::compiler
