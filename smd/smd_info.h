#pragma once

#include <cstdint>
#include <string>

#include "smd/smd_summary.h"

namespace tarnwick::smd {

/// What the inspector shows of a reference SMD.
struct SmdInfo {
  std::string Text;     // for the info box: lines that end in \r\n, with tabs
  SmdSummary Summary;   // its materials, in order, fill the combo box; the first is the one chosen
  bool Opened = false;  // whether the file could be read at all
  int64_t BadLine = 0;  // the line at which the scan ended early, or 0; the figures are those up to there
  std::string Error;    // why the file could not be opened or read to its end, in the system's words
};

/// Opens and scans the file at `path`. What is wrong with it stands in the result, in `Text` in the inspector's words.
SmdInfo InspectSmd(const std::string& path);

}  // namespace tarnwick::smd
