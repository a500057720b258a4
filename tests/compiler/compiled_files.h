#pragma once

#include <cstring>
#include <fstream>
#include <string>

#include "compiler/compile_model.h"
#include "model/studio_records.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// Writes the files of a compiled model, those that it has, the block file under the name by which the model asks for
/// it. Gives the path of the .mdl file.
inline std::string WriteCompiled(const ScratchFolder& folder, const compiler::CompiledFiles& files,
                                 const std::string& name = "model") {
  std::string blocks;
  if (!files.Ani.empty()) {
    model::StudioHeader header;
    std::memcpy(&header, files.Mdl.data(), sizeof header);
    const std::string asked = files.Mdl.c_str() + header.AnimBlockNameOffset;
    blocks = asked.substr(asked.rfind('/') + 1);
  }
  const std::pair<std::string, const std::string*> parts[] = {{name + ".mdl", &files.Mdl},
                                                              {name + ".vvd", &files.Vvd},
                                                              {name + ".dx90.vtx", &files.Vtx},
                                                              {name + ".phy", &files.Phy},
                                                              {blocks, &files.Ani}};
  for (const auto& [part, bytes] : parts) {
    if (!bytes->empty()) std::ofstream(folder.Path(part), std::ios::binary) << *bytes;
  }
  return folder.Path(name + ".mdl");
}

}  // namespace tarnwick::tests
