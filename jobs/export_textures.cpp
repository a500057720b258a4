#include "jobs/export_textures.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

#include "core/folder_reader.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "core/whole_path.h"
#include "images/image_format.h"
#include "images/tga_path.h"
#include "jobs/image_questions.h"
#include "jobs/input_files.h"
#include "jobs/last_line.h"
#include "jobs/logged_warning.h"
#include "jobs/made_folder.h"
#include "jobs/not_begun.h"
#include "jobs/scratch_directory.h"
#include "jobs/texture_images.h"
#include "jobs/written_anew.h"
#include "textures/texture_export.h"
#include "tools/run_checks.h"
#include "tools/sdk_tools.h"
#include "tools/tool_run.h"
#include "tools/vtf_export.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view TextureExtension = ".vtf";
constexpr std::string_view DefaultFormat = "tga";
constexpr const char* BoxCaption = "VTF Export";

/// The ending of a file's name without its dot; "" if it has none.
std::string EndingOf(std::string_view path) {
  const std::string_view name = core::LastComponent(path);
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? "" : std::string(name.substr(dot + 1));
}

/// `path` with another ending, or with one if it has none.
std::string WithEnding(const std::string& path, std::string_view ending) {
  std::string tga = tools::SuggestOutputName(path);
  return tga.replace(tga.size() - DefaultFormat.size(), DefaultFormat.size(), ending);
}

bool IsTga(const std::string& path) {
  const images::ImageFormat* format = images::FormatOfFileName(path);
  return format != nullptr && format->Number == images::FormatTga;
}

bool IsDds(const std::string& path) {
  const images::ImageFormat* format = images::FormatOfFileName(path);
  return format != nullptr && format->Number == images::FormatDds;
}

std::string FolderOf(const std::string& path) {
  const std::string folder = core::PathText(core::NativePath(path).parent_path());
  return folder.empty() ? "." : folder;
}

/// The TGA files in `folder` whose names begin with `stem`, those of the first frame before the others.
std::vector<fs::path> TgaFiles(const fs::path& folder, const std::string& stem) {
  std::vector<fs::path> files;
  core::FolderReader entries(folder);
  while (entries.Next()) {
    const std::string name = entries.Name();
    if (name.starts_with(stem) && core::EqualIgnoringCase(EndingOf(name), DefaultFormat)) {
      files.push_back(entries.Path());
    }
  }
  // "sky.tga" stands before "sky001.tga": the stems are compared, not the dots behind them.
  std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) { return a.stem() < b.stem(); });
  return files;
}

/// Where vtf2tga writes, and which of the files there are its own.
class TgaPlace {
 public:
  /// In a folder of its own beside `target`, which goes away with the object; or, if they are kept, right beside it.
  TgaPlace(const std::string& target, bool kept, std::string& problem) : m_kept(kept) {
    m_folder = core::NativePath(FolderOf(target));
    m_stem = core::PathText(core::NativePath(tools::SuggestOutputName(target)).stem());
    if (m_kept) {
      for (const fs::path& file : TgaFiles(m_folder, m_stem)) m_before.emplace(file, FileBefore(core::PathText(file)));
      return;
    }
    const fs::path parent = m_folder;
    std::error_code error;
    do {
      m_folder = core::TemporaryName((parent / "texture").native());
    } while (!fs::create_directory(m_folder, error) && !error);
    if (error) problem = core::PathText(parent) + " cannot be written to: " + error.message();
  }
  TgaPlace(const TgaPlace&) = delete;
  TgaPlace& operator=(const TgaPlace&) = delete;
  ~TgaPlace() {
    if (!m_kept) core::RemoveFolder(m_folder);
  }

  const std::string& Stem() const { return m_stem; }

  /// The files that were written since the object was made, sorted.
  std::vector<fs::path> Written() const {
    std::vector<fs::path> files = TgaFiles(m_folder, m_stem);
    std::erase_if(files, [this](const fs::path& file) {
      const auto before = m_before.find(file);
      return before != m_before.end() && !before->second.IsWrittenAnew();
    });
    return files;
  }

  std::string FirstFile(const std::string& target) const {
    return m_kept ? WithEnding(target, DefaultFormat)
                  : core::PathBelow(core::PathText(m_folder), m_stem + "." + std::string(DefaultFormat));
  }

 private:
  bool m_kept;
  fs::path m_folder;
  std::string m_stem;
  std::map<fs::path, FileBefore> m_before;
};

/// One texture on its way.
class Export {
 public:
  Export(const ExportTextures& job, const images::ImageWorker& worker, ItemRun& run)
      : m_job(job), m_worker(worker), m_run(run), m_log(run, run.Result.Shown), m_input(run.Result.Source) {}

  void Work() {
    const std::string& target = m_run.Result.Target;
    if (!MakeFolder()) return;
    std::string problem;
    const TgaPlace place(target, m_job.KeepTga, problem);
    if (!problem.empty()) return m_run.Fail(core::TroubleKind::Unwritable, problem, target);

    const std::string tga = place.FirstFile(target);
    const TextureImages texture(m_input, m_job.Content->Files());
    const bool wrote = IsOnDisk(m_input) ? WriteTgaByTool(place, tga) : WriteTgaOfArchive(place, tga, texture);
    if (!wrote) return;
    const std::vector<fs::path> files = place.Written();
    for (const fs::path& file : files) {
      if (!PlaceImage(file, place.Stem(), texture)) break;
    }
    if (m_run.Stop.stop_requested()) m_run.Fail(core::TroubleKind::Stopped, "stopped");
  }

 private:
  /// Runs the tool, and tells if it does not leave what it should.
  bool WriteTgaByTool(const TgaPlace& place, const std::string& tga) {
    const tools::FinishedRun finished = RunTool(tga);
    const bool failed = finished.Outcome.End && finished.Outcome.End->ExitCode != 0;
    if (m_run.Stop.stop_requested()) {
      m_run.Fail(core::TroubleKind::Stopped, "stopped");
    } else if (finished.Outcome.Failure) {
      tools::ReportFatalSystemError(*finished.Outcome.Failure, m_run);
    } else if (place.Written().empty() || failed) {
      TellToolFailure(finished);
    } else {
      return true;
    }
    return false;
  }

  /// Writes what a texture in an archive holds: what our own tool would write, without it; for the SDK's tool the
  /// texture is laid on the disk as long as that runs.
  bool WriteTgaOfArchive(const TgaPlace& place, const std::string& tga, const TextureImages& texture) {
    const std::string name = m_run.Result.Source;
    const auto fail = [&](core::TroubleKind kind, const std::string& problem, const std::string& file) {
      m_run.Fail(kind, file + ": " + problem, file);
      return false;
    };
    if (!texture.IsRead()) return fail(core::TroubleKind::Unreadable, texture.Problem(), name);
    std::string problem = texture.Problem();
    if (tools::ToolInUse(m_job.SdkDirectory, tools::Vtf2tga).StandsIn) {
      if (texture.Texture() == nullptr) return fail(core::TroubleKind::Damaged, problem, name);
      const auto written = [&](const std::string& file, const auto& image, auto) {
        m_log.Log(std::string(core::LastComponent(file)) + ": " + std::to_string(image.Width) + " x " +
                  std::to_string(image.Height) + " of " + name + "\r\n");
      };
      if (textures::ExportTexture(*texture.Texture(), 0, tga, written, problem)) return true;
      m_run.Fail(core::TroubleKind::Unwritable, problem, tga);
      return false;
    }
    const ScratchDirectory scratch;
    if (scratch.Path().empty()) return fail(core::TroubleKind::Unwritable, scratch.Problem(), "temporary files");
    m_input = core::PathText(scratch.Path() / "texture.vtf");
    auto file = core::OutputFile::Create(m_input, &problem);
    if (!file) return fail(core::TroubleKind::Unwritable, problem, m_input);
    file->Write({reinterpret_cast<const char*>(texture.Bytes().data()), texture.Bytes().size()});
    if (!file->Commit()) return fail(core::TroubleKind::Unwritable, file->Error(), m_input);
    return WriteTgaByTool(place, tga);
  }

  /// Has the target's folder made. False if it is not there and cannot be had.
  bool MakeFolder() {
    const std::string folder = FolderOf(m_run.Result.Target);
    std::error_code error;
    if (fs::is_directory(core::NativePath(folder), error)) return true;
    if (!m_run.Ask({.Kind = QuestionKind::MakeDirectory,
                    .Text = "The directory " + folder + " does not exist.",
                    .Caption = BoxCaption,
                    .Yes = "Create Directory",
                    .Assumed = true})) {
      m_run.Fail(core::TroubleKind::Missing, "the directory " + folder + " does not exist", folder);
      return false;
    }
    const std::string problem = m_folder.Make(folder);
    if (!problem.empty()) m_run.Fail(core::TroubleKind::Unwritable, folder + " cannot be made: " + problem, folder);
    return problem.empty();
  }

  tools::FinishedRun RunTool(const std::string& tga) {
    const process::Command command =
        tools::Vtf2tgaCommand(tools::ToolInUse(m_job.SdkDirectory, tools::Vtf2tga).Directory, m_input, tga);
    tools::ToolRunOptions options;
    options.Start = m_job.Start;
    options.Stop = m_run.Stop;
    options.AnnounceStart = false;
    options.OnText = [this](std::string_view text) { m_run.ToolText(text); };
    std::string warnings;
    for (const std::string& warning : tools::CheckVtf2tgaRun(m_input, tga)) {
      warnings += "\r\n" + TellLoggedWarning(m_run, warning);
    }
    m_run.Command(command.Line());
    tools::FinishedRun finished = tools::RunTool(tools::ToolRun::Vtf2tga, command, options);
    m_run.Result.Shown = finished.TextWithNotes() + warnings;
    m_run.Result.Notes = finished.Notes;
    return finished;
  }

  /// The tool left no image. Where one of another format was wanted the box says so.
  void TellToolFailure(const tools::FinishedRun& finished) {
    const std::string said = LastLine(finished.Outcome.Log.Text());
    const std::string cause = said.empty() ? "vtf2tga wrote no image and said nothing" : "vtf2tga: " + said;
    const std::string& target = m_run.Result.Target;
    if (IsTga(target) || !m_job.KeepTga) return m_run.Fail(core::TroubleKind::Tool, cause, m_run.Result.Source);
    m_run.Tell({.Kind = core::TroubleKind::Tool,
                .File = m_run.Result.Source,
                .Text = "Unable to create TGA file " + target + "\n",
                .Caption = "TGA Error",
                .Details = cause});
  }

  /// Gives the TGA file its place, as it is or as an image of another format. False if that failed, which is told.
  bool PlaceImage(const fs::path& tga, const std::string& stem, const TextureImages& texture) {
    const std::string& target = m_run.Result.Target;
    const std::string ending = EndingOf(target);
    std::string destination = target;
    if (core::PathText(tga.stem()) != stem) {
      destination = core::PathText(core::NativePath(FolderOf(target)) /
                                   core::NativePath(core::PathText(tga.stem()) + (ending.empty() ? "" : ".") + ending));
    }
    if (!IsTga(destination)) {
      if (!Convert(tga, stem, destination, texture)) return false;
    } else if (!m_job.KeepTga) {
      std::error_code error;
      fs::rename(core::NativePath(core::PathText(tga)), core::NativePath(destination), error);
      if (error) {
        m_run.Fail(core::TroubleKind::Unwritable, destination + " cannot be written: " + error.message(), destination);
        return false;
      }
    }
    std::error_code ignored;
    m_run.Result.Files.push_back({destination, fs::file_size(core::NativePath(destination), ignored)});
    return true;
  }

  bool Convert(const fs::path& tga, const std::string& stem, const std::string& destination,
               const TextureImages& texture) {
    std::string reason;
    const std::string name = core::PathText(tga.filename());
    if (IsDds(destination) && texture.WriteDds(name, stem + "." + std::string(DefaultFormat), destination, reason)) {
      m_log.Log("Converting " + std::string(images::ImageFileName(m_run.Result.Source)) + " from VTF to DDS\r\n");
      return true;
    }
    return images::ConvertTgaToImage(core::PathText(tga), destination, ConversionFor(m_run, m_log, m_worker, false));
  }

  const ExportTextures& m_job;
  const images::ImageWorker& m_worker;
  ItemRun& m_run;
  KeepingReport m_log;
  std::string m_input;  // what the tool reads
  MadeFolder m_folder;
};

/// The files that stand where those of an item go, but for its target, if `targetIsNamed`.
std::vector<std::string> InTheWay(const PlannedItem& item, bool targetIsNamed, const core::FileSource& source) {
  const TextureImages texture(item.Input, source);
  std::vector<std::string> found;
  for (const std::string& path : texture.PathsFor(item.Target)) {
    const std::string tga = WithEnding(path, DefaultFormat);
    if (core::FileExists(path) && !(targetIsNamed && path == item.Target)) found.push_back(path);
    if (tga != path && core::FileExists(tga)) found.push_back(tga);
  }
  return found;
}

/// Whether the job may replace what stands in its way.
bool MayReplace(const JobPlan& plan, bool targetIsNamed, const core::FileSource& source, Host& host) {
  size_t items = 0;
  std::vector<std::string> files;
  for (const PlannedItem& item : plan.Items) {
    const auto found = InTheWay(item, targetIsNamed, source);
    items += found.empty() ? 0u : 1u;
    files.insert(files.end(), found.begin(), found.end());
  }
  if (files.empty()) return true;
  std::string text = std::to_string(items) + " of " + std::to_string(plan.Items.size()) +
                     " textures have been exported before.\nReplace their images?";
  if (targetIsNamed) {
    text = files.front() + (files.size() == 1 ? "" : " and " + std::to_string(files.size() - 1) + " more files") +
           (files.size() == 1 ? " exists" : " exist") + " already.\nReplace what stands beside the image?";
  }
  return host.Ask({.Kind = QuestionKind::Overwrite, .Text = text, .Caption = BoxCaption, .Assumed = true});
}

core::Trouble NoPlaceBeside(const std::string& input) {
  return {.Kind = core::TroubleKind::Refused,
          .File = input,
          .Text = input + ": an image cannot be put beside a texture in an archive; name a file or a folder for it",
          .Alike = "an image cannot be put beside a texture in an archive"};
}

}  // namespace

JobPlan Plan(const ExportTextures& job) {
  JobPlan plan;
  std::error_code ignored;
  const auto content = ContentOf(job);
  if (job.Place == ImagePlace::ExactlyOutput) {
    for (const std::string& input : job.Inputs) {
      if (job.Output.empty() && !IsOnDisk(input)) {
        plan.Troubles.push_back(NoPlaceBeside(input));
        continue;
      }
      const std::string target = job.Output.empty() ? tools::SuggestOutputName(input) : job.Output;
      plan.Items.push_back({input, EndingOf(target).empty() ? WithEnding(target, DefaultFormat) : target});
    }
    return plan;
  }
  const std::string ending = EndingOf(job.Output);
  const fs::path output = core::NativePath(job.Output);
  InputFiles found = FindInputFiles(job.Inputs, TextureExtension, job.Recursive, content->Files());
  plan.Troubles = std::move(found.Troubles);
  const bool oneFile = job.Inputs.size() == 1 && found.Files.size() == 1 && !found.Files[0].Listed;
  if (job.Place == ImagePlace::Output && oneFile && !ending.empty() && job.Format.empty() &&
      !fs::is_directory(output, ignored)) {
    plan.Items.push_back({job.Inputs[0], job.Output});
    return plan;
  }
  UniqueNames names;
  for (const InputFile& file : found.Files) {
    if (job.Place == ImagePlace::BesideInput && !IsOnDisk(file.Path)) {
      plan.Troubles.push_back(NoPlaceBeside(file.Path));
      continue;
    }
    if (job.Place == ImagePlace::BesideInput) {
      const std::string lower = core::LowerAscii(ending);
      const bool noImage = lower.empty() || lower == "vtf" || lower == "vmt";
      plan.Items.push_back({file.Path, WithEnding(file.Path, noImage ? DefaultFormat : ending)});
      continue;
    }
    const std::string name = names.Take(WithoutExtension(file.Name, TextureExtension)) + "." +
                             (job.Format.empty() ? std::string(DefaultFormat) : job.Format);
    plan.Items.push_back({file.Path, core::PathBelow(core::PathText(output), name)});
  }
  return plan;
}

JobResult Run(const ExportTextures& given, Host& host, const std::stop_token& stop) {
  ExportTextures job = given;
  job.Content = ContentOf(given);
  const JobPlan plan = Plan(job);
  const tools::ToolChoice tool = tools::ToolInUse(job.SdkDirectory, tools::Vtf2tga);
  const auto missing = tools::MissingTool(tools::SdkToolPath(tool.Directory, tools::Vtf2tga), tools::Vtf2tga);
  if (missing && !plan.Items.empty()) return NotBegun(plan, *missing, host);
  if (job.KeepTga && !MayReplace(plan, job.Place == ImagePlace::ExactlyOutput, job.Content->Files(), host)) {
    return NotBegun(plan, NotWanted(), host);
  }
  if (tool.StandsIn)
    host.On(Line{NoItem, LineSource::Log, tools::LineKind::Plain, tools::OwnToolNote(tools::Vtf2tga) + "\r\n"});
  images::ImageWorker worker;
  worker.StopWith(stop);
  const int threads = job.KeepTga ? 1 : job.Threads;
  return RunItems(plan, {threads, threads}, host, stop, [&](size_t, ItemRun& run) {
    Export(job, worker, run).Work();
    for (const core::Trouble& trouble : job.Content->TakeTroubles()) run.Tell(trouble);
  });
}

}  // namespace tarnwick::jobs
