#pragma once

#include <cstdio>
#include <string>

#include "smd/smd_summary.h"

namespace tarnwick::bench {

/// The plain way to scan an SMD file: a line at a time into a buffer, cut into tokens by strtok, materials searched one
/// by one.
void ScanPlainly(std::FILE* file, smd::SmdSummary& summary);

/// The plain way to replace a name: a walk over the text character by character, written as it goes.
void ReplacePlainly(const std::string& text, const std::string& from, const std::string& to, std::FILE* out);

}  // namespace tarnwick::bench
