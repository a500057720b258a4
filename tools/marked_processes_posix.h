#pragma once

#ifndef _WIN32

#include <string>

namespace tarnwick::tools {

/// A new environment setting ("NAME=value") that no other run in this session has. A child that starts with it passes
/// it on to all that it starts, so they can be found even where they have left its process group, as programs that
/// Wine starts may do.
std::string NewProcessMark();

/// Sends signal `number` to every process of this user whose environment holds `mark`, Wine's own servers left out,
/// since other Windows programs may hang on them. Processes are found through /proc; without it nothing happens.
void SignalMarkedProcesses(const std::string& mark, int number);

}  // namespace tarnwick::tools

#endif
