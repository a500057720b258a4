#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::tests {

/// The bytes of a compiled model's files; an empty one is not there.
struct LayoutFiles {
  std::string Mdl, Vvd, Vtx, Phy;
};

/// Checks the files of a compiled model against what is known of the formats, field by field and file against file:
/// order, padding and texts of the .mdl file, counts, offsets and flags that follow from each other, the order of
/// vertices with its fix-ups, strip groups and strips with their bones, and that no byte of the .vtx file is left over.
/// Gives a line for each thing that is wrong; none for sound files.
std::vector<std::string> CheckLayout(const LayoutFiles& files);

/// The files beside `path`, which ends in .mdl.
LayoutFiles ReadLayoutFiles(const std::string& path);

}  // namespace tarnwick::tests
