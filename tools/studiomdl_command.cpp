#include "tools/studiomdl_command.h"

#include "tools/sdk_tools.h"

namespace tarnwick::tools {

namespace {

constexpr StudiomdlOption OptionTable[] = {
    {0x001, "FullCollide", " -fullcollide"}, {0x002, "Check Lengths", " -checklengths"},
    {0x004, "Print Bones", " -printbones"},  {0x008, "Perf", " -perf"},
    {0x010, "Print Graph", " -printgraph"},  {0x020, "Define Bones", " -definebone"},
    {0x100, "Flip Triangles", " -f"},        {0x200, "Dump Hit Boxes", " -h"},
    {0x040, "Reverse Normals", ""},          {0x080, "Tag Normals", ""},
};

}  // namespace

const std::span<const StudiomdlOption> StudiomdlOptions = OptionTable;

std::string StudiomdlCommandLine(std::string_view sdkDirectory, std::string_view gameDirectory, std::string_view qcPath,
                                 uint32_t options) {
  std::string line = SdkToolPath(sdkDirectory, Studiomdl);
  line += " -game \"";
  line += gameDirectory;
  line += "\" \"";
  line += qcPath;
  line += '"';
  for (const StudiomdlOption& option : OptionTable) {
    if ((options & option.Bit) != 0) line += option.Switch;
  }
  return line;
}

}  // namespace tarnwick::tools
