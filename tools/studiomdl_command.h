#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "process/command.h"

namespace tarnwick::tools {

/// A switch of studiomdl as one bit of the model's options.
struct StudiomdlOption {
  uint32_t Bit;
  std::string_view Caption;  // of its check box
  std::string_view Switch;   // with its leading blank; empty if studiomdl has none for it
};

/// All options, in the order in which their switches stand on the command line; the two without a switch last.
extern const std::span<const StudiomdlOption> StudiomdlOptions;

/// The call of studiomdl, as a line: `sdkDirectory`/studiomdl.exe -game "`gameDirectory`" "`qcPath`" and the switches
/// of the set bits of `options`, unknown bits without effect. A ready-made script is compiled with no options.
process::Command StudiomdlCommand(std::string_view sdkDirectory, std::string_view gameDirectory,
                                  std::string_view qcPath, uint32_t options = 0);

}  // namespace tarnwick::tools
