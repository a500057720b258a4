#include "textures/vmt_writer.h"

#include "core/text_writer.h"

namespace tarnwick::textures {

void WriteVmt(const Material& material, core::OutputFile& file) {
  core::TextWriter writer(file);
  writer.Format("\"%s\"\n{\n", material.Shader);
  for (const auto& [key, value] : material.Parameters) writer.Format("\t\"%s\" \"%s\"\n", key, value);
  writer.Text("}\n");
}

}  // namespace tarnwick::textures
