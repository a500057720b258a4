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

process::Command StudiomdlCommand(std::string_view sdkDirectory, std::string_view gameDirectory,
                                  std::string_view qcPath, uint32_t options) {
  process::Command command{SdkToolPath(sdkDirectory, Studiomdl)};
  command.Word("-game").InQuotes(gameDirectory).InQuotes(qcPath);
  for (const StudiomdlOption& option : OptionTable) {
    if ((options & option.Bit) != 0 && !option.Switch.empty()) command.Word(option.Switch.substr(1));
  }
  return command;
}

}  // namespace tarnwick::tools
