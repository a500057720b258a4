#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/output_file.h"

namespace tarnwick::textures {

/// A material: a shader and its parameters.
struct Material {
  std::string Shader;
  std::vector<std::pair<std::string, std::string>> Parameters;  // such as "$model", "1", in the order of the file
};

/// Writes the text of a material file: the shader, and a line for each parameter, everything in quotes. The file has
/// no way to write a quote or a line end inside them, so the texts must hold none.
void WriteVmt(const Material& material, core::OutputFile& file);

}  // namespace tarnwick::textures
