#include "cli/vtf_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "cli/interrupt.h"
#include "cli/terminal.h"
#include "cli/tool_directories.h"
#include "cli/vtf_export.h"
#include "cli/vtf_info.h"
#include "cli/vtf_plan.h"
#include "core/paths.h"
#include "images/known_formats.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli vtf -o brick.png brick.vtf
  tarnwick-cli vtf -o images --format png -r game/materials
  tarnwick-cli vtf info brick.vtf)";

constexpr const char* InfoExamples = R"(Example:
  tarnwick-cli vtf info --json materials/models/props/*.vtf >facts.jsonl)";

struct Options {
  std::vector<std::string> Inputs;
  std::string Output = ".";
  std::string Format;
  ToolDirectories Directories;
  bool Recursive = false;
  bool ListFormats = false;
  bool Json = false;
  bool Quiet = false;
  bool Verbose = false;
  int Jobs = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  std::vector<std::string> InfoFiles;
};

std::string OutcomeJson(const VtfOutcome& outcome) {
  nlohmann::ordered_json json;
  json["input"] = outcome.Texture.Input;
  json["outcome"] = outcome.Succeeded() ? "ok" : outcome.Stopped ? "stopped" : "failed";
  json["files"] = outcome.Files;
  json["seconds"] = outcome.Seconds;
  json["errors"] = outcome.Errors;
  // Names of files are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// The extensions that images can be written with, sorted.
std::set<std::string> WritableEndings(const std::vector<images::KnownFormat>& formats) {
  std::set<std::string> endings;
  for (const images::KnownFormat& format : formats) {
    if (format.Writes) endings.insert(format.Endings.begin(), format.Endings.end());
  }
  return endings;
}

/// Whether images can be written with this extension. If not, it is told with those that can.
bool CanWrite(const std::string& extension, const images::ImageWorker& worker, std::ostream& err) {
  std::string reason;
  const auto formats = images::KnownFormats(worker, &reason);
  if (formats.empty()) {
    err << "Error: " << reason << '\n';
    return false;
  }
  std::string list;
  for (const std::string& ending : WritableEndings(formats)) {
    if (core::EqualIgnoringCase(ending, extension)) return true;
    list += " " + ending;
  }
  err << "Error: images cannot be written as ." << extension << "; choose one of" << list << '\n';
  return false;
}

int ListFormats(Invocation& invocation) {
  std::string reason;
  const auto formats = images::KnownFormats(images::ImageWorker(), &reason);
  for (const std::string& ending : WritableEndings(formats)) invocation.Out << ending << '\n';
  if (formats.empty()) invocation.Err << "Error: " << reason << '\n';
  return formats.empty() ? ExitFailure : ExitSuccess;
}

/// The verb's run over all its textures.
class VtfBatch {
 public:
  VtfBatch(const Options& options, Invocation& invocation)
      : m_options(options), m_out(invocation.Out), m_err(invocation.Err) {}

  int Run() {
    const VtfPlan plan = PlanVtf(m_options.Inputs, m_options.Output, m_options.Format, m_options.Recursive);
    for (const std::string& problem : plan.Problems) m_err << "Error: " << problem << '\n';
    if (plan.Textures.empty()) return ExitFailure;
    if (!CanWrite(plan.Textures.front().Extension, m_worker, m_err)) return ExitUsage;
    m_options.Directories.FillFromSettings(m_err);

    ProgressLine progress(m_err, ErrorIsTerminal() && plan.Textures.size() > 1 && !m_options.Quiet);
    std::vector<std::thread> threads;
    for (int i = 1; i < m_options.Jobs && static_cast<size_t>(i) < plan.Textures.size(); ++i) {
      threads.emplace_back([&] { Work(plan, progress); });
    }
    Work(plan, progress);
    for (std::thread& thread : threads) thread.join();
    progress.Clear();
    if (plan.Textures.size() > 1 && !m_options.Quiet) {
      m_err << m_succeeded << " of " << plan.Textures.size() << " textures written\n";
    }
    return m_succeeded == plan.Textures.size() && plan.Problems.empty() ? ExitSuccess : ExitFailure;
  }

 private:
  void Work(const VtfPlan& plan, ProgressLine& progress) {
    tools::ToolRunOptions run;
    run.Start = m_options.Directories.Start();
    run.Stop = &m_interrupt.Flag();
    run.AnnounceStart = false;
    const std::string sdk = m_options.Directories.SdkFor(tools::Vtf2tga);
    for (size_t i = m_next++; i < plan.Textures.size() && !m_interrupt.IsSet(); i = m_next++) {
      const VtfOutcome outcome = ExportVtf(plan.Textures[i], sdk, m_worker, run);
      const std::lock_guard guard(m_lock);
      progress.Clear();
      Tell(outcome);
      progress.Show(++m_done, plan.Textures.size(), outcome.Texture.Input);
    }
  }

  void Tell(const VtfOutcome& outcome) {
    if (outcome.Succeeded()) ++m_succeeded;
    if (m_options.Verbose) m_err << PlainLines(outcome.LogText);
    for (const std::string& error : outcome.Errors) m_err << outcome.Texture.Input << ": " << error << '\n';
    if (outcome.Stopped) m_err << outcome.Texture.Input << ": stopped\n";
    if (m_options.Json) m_out << OutcomeJson(outcome) << std::endl;
    if (m_options.Json || m_options.Quiet) return;
    for (const std::string& file : outcome.Files) m_out << file << std::endl;
  }

  Options m_options;
  std::ostream& m_out;
  std::ostream& m_err;
  images::ImageWorker m_worker;
  InterruptFlag m_interrupt;
  std::atomic<size_t> m_next{0};
  std::mutex m_lock;
  size_t m_done = 0;
  size_t m_succeeded = 0;
};

}  // namespace

void AddVtfVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("vtf", "Write textures as images");
  auto options = std::make_shared<Options>();
  verb->add_option("INPUT", options->Inputs, "Textures (.vtf), or folders");
  verb->add_option("-o,--output", options->Output,
                   "The image of one INPUT, its extension telling the format; or a folder, made if missing, for an "
                   "image named like each INPUT. Further frames and faces get numbers behind the name")
      ->capture_default_str();
  verb->add_option("-f,--format", options->Format, "The format of the images in the folder, as an extension (tga)");
  verb->add_flag("--list-formats", options->ListFormats, "Print the extensions that can be written");
  verb->add_flag("-r,--recursive", options->Recursive,
                 "Take every .vtf file below a folder; each image gets a path like its own");
  verb->add_option("-j,--jobs", options->Jobs, "Textures at a time")->check(CLI::Range(1, 1024))->capture_default_str();
  options->Directories.AddSdkOptions(*verb);
  verb->add_flag("--json", options->Json, "Print one JSON object a texture, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors only");
  verb->add_flag("-v,--verbose", options->Verbose, "Print the command lines and what the tools say");
  verb->footer(Examples);

  CLI::App* info = verb->add_subcommand("info", "Print what textures hold: size, format, flags, frames, mip levels");
  info->add_option("FILE", options->InfoFiles, "Textures (.vtf)")->required();
  info->add_flag("--json", options->Json, "Print one JSON object a texture, one a line");
  info->footer(InfoExamples);

  verb->callback([options, info, &invocation] {
    if (info->parsed()) {
      invocation.Run = [options, &invocation] { return PrintVtfInfo(options->InfoFiles, options->Json, invocation); };
    } else if (options->ListFormats) {
      invocation.Run = [&invocation] { return ListFormats(invocation); };
    } else if (options->Inputs.empty()) {
      throw CLI::RequiredError("INPUT");
    } else {
      invocation.Run = [options, &invocation] { return VtfBatch(*options, invocation).Run(); };
    }
  });
}

}  // namespace tarnwick::cli
