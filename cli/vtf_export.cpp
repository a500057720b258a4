#include "cli/vtf_export.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <random>

#include "cli/terminal.h"
#include "core/paths.h"
#include "images/conversion.h"
#include "images/image_format.h"
#include "tools/vtf_export.h"

namespace tarnwick::cli {

namespace fs = std::filesystem;

namespace {

/// A folder for files on their way, removed with them.
class WorkFolder {
 public:
  explicit WorkFolder(const fs::path& parent, std::error_code& error) {
    std::random_device random;
    do {
      m_path = parent / (".tarnwick-" + std::to_string(random()));
    } while (!fs::create_directories(m_path, error) && !error);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }
  const fs::path& Path() const { return m_path; }

  /// The TGA files in the folder, sorted by name.
  std::vector<fs::path> TgaFiles() const {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entries(m_path, error); !error && entries != fs::directory_iterator();
         entries.increment(error)) {
      if (core::EqualIgnoringCase(core::PathText(entries->path().extension()), ".tga"))
        files.push_back(entries->path());
    }
    // "sky.tga" stands before "sky001.tga": the stems are compared, not the dots behind them.
    std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) { return a.stem() < b.stem(); });
    return files;
  }

 private:
  fs::path m_path;
};

/// Keeps the log, and of the boxes one line each among the errors.
class OutcomeReport : public core::Report {
 public:
  explicit OutcomeReport(VtfOutcome& outcome) : m_outcome(outcome) {}
  void Log(std::string_view text) override { m_outcome.LogText += text; }
  void Tell(const core::Trouble& trouble) override { m_outcome.Errors.push_back(LineOf(trouble)); }

 private:
  VtfOutcome& m_outcome;
};

/// Why the tool left no file, in its own words where it has any.
std::string NoImageReason(const tools::FinishedRun& run) {
  const std::string said = LastLine(run.Outcome.Log.Text());
  return said.empty() ? "vtf2tga wrote no image and said nothing" : "vtf2tga: " + said;
}

/// Gives the TGA file its place, as it is or as an image of another format. False if that failed, which is told.
bool PlaceImage(const fs::path& tga, const std::string& destination, const images::ImageWorker& worker,
                core::Report& report, VtfOutcome& outcome) {
  const images::ImageFormat* format = images::FormatOfFileName(destination);
  if (format == nullptr || format->Number != images::FormatTga) {
    return images::ConvertTgaToImage(core::PathText(tga), destination, {report, worker, {}});
  }
  std::error_code error;
  fs::rename(tga, core::NativePath(destination), error);
  if (error) outcome.Errors.push_back(destination + " cannot be written: " + error.message());
  return !error;
}

void Export(VtfOutcome& outcome, const std::string& sdkDirectory, const images::ImageWorker& worker,
            const tools::ToolRunOptions& run) {
  const PlannedTexture& texture = outcome.Texture;
  std::error_code error;
  fs::create_directories(core::NativePath(texture.Folder), error);
  if (error) return outcome.Errors.push_back(texture.Folder + " cannot be made: " + error.message());
  const WorkFolder folder(core::NativePath(texture.Folder), error);
  if (error) return outcome.Errors.push_back(texture.Folder + " cannot be written to: " + error.message());

  OutcomeReport report(outcome);
  const std::string tga = core::PathText(folder.Path() / core::NativePath(texture.Stem + ".tga"));
  const auto keepTga = [](const std::string&, const std::string&, std::string&) { return false; };
  const auto result = tools::ExtractVtf({sdkDirectory, texture.Input, tga}, keepTga, run, report);
  outcome.LogText = result.Log + outcome.LogText;
  outcome.Stopped = result.Run.Outcome.Stopped;
  if (!outcome.Succeeded()) return;

  const auto files = folder.TgaFiles();
  const bool toolFailed = result.Run.Outcome.End && result.Run.Outcome.End->ExitCode != 0;
  if (files.empty() || toolFailed) return outcome.Errors.push_back(NoImageReason(result.Run));
  for (const fs::path& file : files) {
    const fs::path place = core::NativePath(texture.Folder) / (core::PathText(file.stem()) + "." + texture.Extension);
    if (!PlaceImage(file, core::PathText(place), worker, report, outcome)) return;
    outcome.Files.push_back(core::PathText(place));
  }
}

}  // namespace

VtfOutcome ExportVtf(const PlannedTexture& texture, const std::string& sdkDirectory, const images::ImageWorker& worker,
                     const tools::ToolRunOptions& run) {
  const auto started = std::chrono::steady_clock::now();
  VtfOutcome outcome;
  outcome.Texture = texture;
  Export(outcome, sdkDirectory, worker, run);
  outcome.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  return outcome;
}

}  // namespace tarnwick::cli
