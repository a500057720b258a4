#include "process/marked_processes_posix.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace tarnwick::process {

namespace fs = std::filesystem;

namespace {

std::string ReadProcFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Whether `environment`, settings that each end in NUL, holds `setting`.
bool HoldsSetting(std::string_view environment, std::string_view setting) {
  for (size_t at = environment.find(setting); at != std::string_view::npos; at = environment.find(setting, at + 1)) {
    const size_t end = at + setting.size();
    if ((at == 0 || environment[at - 1] == 0) && (end == environment.size() || environment[end] == 0)) return true;
  }
  return false;
}

std::string ProcessName(const fs::path& folder) {
  std::string name = ReadProcFile(folder / "comm");
  if (!name.empty() && name.back() == '\n') name.pop_back();
  return name;
}

}  // namespace

std::string NewProcessMark() {
  static std::atomic<unsigned> count{0};
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return "TARNWICK_RUN=" + std::to_string(getpid()) + "-" + std::to_string(now) + "-" + std::to_string(++count);
}

void SignalMarkedProcesses(const std::string& mark, int number, std::span<const std::string_view> spared) {
  std::error_code error;
  fs::directory_iterator entries("/proc", error);
  for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
    const std::string digits = entries->path().filename().string();
    pid_t process = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), process);
    if (problem != std::errc() || end != digits.data() + digits.size() || process == getpid()) continue;
    if (!HoldsSetting(ReadProcFile(entries->path() / "environ"), mark)) continue;
    const std::string name = ProcessName(entries->path());
    if (std::find(spared.begin(), spared.end(), name) == spared.end()) kill(process, number);
  }
}

}  // namespace tarnwick::process
