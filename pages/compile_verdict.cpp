#include "pages/compile_verdict.h"

#include <chrono>
#include <filesystem>
#include <string_view>

#include "core/byte_size.h"
#include "core/paths.h"
#include "jobs/summary.h"

namespace tarnwick::pages {

namespace fs = std::filesystem;

namespace {

std::string CountOf(const jobs::ItemResult& result, core::Severity level, const std::string& noun) {
  const size_t count = result.Count(level);
  return count == 0 ? "no " + noun + "s" : jobs::Counted(count, noun);
}

/// "props/crate.mdl": the model's path below the models of the game; the whole path if it lies elsewhere.
std::string ModelName(const std::string& path, std::string_view game) {
  while (game.ends_with('/') || game.ends_with('\\')) game.remove_suffix(1);
  const std::string models = std::string(game) + "/models/";
  return path.starts_with(models) ? path.substr(models.size()) : path;
}

/// How long ago a file was written, in the largest unit that is full: "3 days"; "" if there is none.
std::string AgeOf(const std::string& path) {
  const auto found = core::FindIgnoringCase(path);
  if (!found) return {};
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(core::NativePath(*found), error);
  if (error) return {};
  const auto seconds =
      std::chrono::duration_cast<std::chrono::seconds>(fs::file_time_type::clock::now() - time).count();
  const struct {
    long long Seconds;
    const char* Noun;
  } units[] = {{86'400, "day"}, {3'600, "hour"}, {60, "minute"}};
  for (const auto& unit : units) {
    if (seconds >= unit.Seconds) return jobs::Counted(static_cast<size_t>(seconds / unit.Seconds), unit.Noun);
  }
  return jobs::Counted(static_cast<size_t>(seconds < 0 ? 0 : seconds), "second");
}

/// What is said of the model's file.
std::string FileText(const jobs::ItemResult& result, const std::string& gameDirectory) {
  if (result.Target.empty()) return "Whether a model was written is not known: the script names none";
  const std::string name = ModelName(result.Target, gameDirectory);
  for (const core::WrittenFile& file : result.Files) {
    if (core::EqualIgnoringCase(file.Path, result.Target)) {
      return name + " was written (" + core::FormatByteSize(file.Size) + ")";
    }
  }
  const std::string age = AgeOf(result.Target);
  return name + " was not written, " + (age.empty() ? "and there is none" : "the file there is " + age + " old");
}

}  // namespace

std::string CompileVerdict(const jobs::ItemResult& result, const std::string& gameDirectory) {
  const std::string begin = result.Judged == jobs::Verdict::Stopped ? "Stopped: " : "";
  return begin + FileText(result, gameDirectory) + "; " + CountOf(result, core::Severity::Error, "error") + ", " +
         CountOf(result, core::Severity::Warning, "warning");
}

std::string VerdictLines(const jobs::ItemResult& result, const std::string& gameDirectory) {
  std::string lines = "\r\n[" + CompileVerdict(result, gameDirectory) + "]\r\n";
  if (const core::Trouble* error = result.First(core::Severity::Error)) {
    lines += "[The first error: " + error->Text + "]\r\n";
  }
  return lines;
}

}  // namespace tarnwick::pages
