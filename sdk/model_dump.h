#pragma once

#include <ostream>
#include <string>

namespace tarnwick::sdk {

/// Which parts of a compiled model are printed.
struct ModelDump {
  bool Bones = false;         // a line each: number, name, parent, place
  bool DefinedBones = false;  // as $definebone statements
  bool Hitboxes = false;      // as $hboxset and $hbox statements
};

/// Prints parts of the model at `path`. False, with the `reason`, if it cannot be read.
bool DumpModel(const std::string& path, const ModelDump& dump, std::ostream& out, std::string& reason);

}  // namespace tarnwick::sdk
