#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tarnwick::process {

/// A new environment setting ("NAME=value") that no other run in this session has. A child that starts with it passes
/// it on to all that it starts, so they can be found even where they have left its process group, as programs that
/// Wine starts may do.
std::string NewProcessMark();

/// Sends signal `number` to every process of this user whose environment holds `mark`, but for those that are called
/// like one of `spared`. Processes are found through /proc; without it nothing happens.
void SignalMarkedProcesses(const std::string& mark, int number, std::span<const std::string_view> spared);

}  // namespace tarnwick::process
