#include "cli/vtf_info.h"

#include <nlohmann/json.hpp>

#include "cli/terminal.h"
#include "core/program_directory.h"
#include "jobs/texture_images.h"
#include "tools/sdk_tools.h"
#include "tools/tool_run.h"

namespace tarnwick::cli {

namespace {

/// Prints the facts of textures, or why there are none, in the order in which they come.
class FactsPrinter {
 public:
  FactsPrinter(bool json, Invocation& invocation) : m_json(json), m_invocation(invocation) {}

  /// `facts`: as the tool gives them, lines or a JSON object.
  void Print(const std::string& file, const std::string& facts) {
    if (!m_json) {
      m_invocation.Out << (std::exchange(m_isFirst, false) ? "" : "\n") << facts;
      return;
    }
    const auto object = nlohmann::ordered_json::parse(facts, nullptr, false);
    if (object.is_discarded()) return Refuse(file, "the tool's facts are no JSON", "");
    Print(object);
  }

  /// `line`: what is told of it, its reason behind the file's name unless given.
  void Refuse(const std::string& file, const std::string& reason, const std::string& line) {
    m_exitCode = ExitFailure;
    m_invocation.Err << (line.empty() ? "Error: " + file + ": " + reason : line) << '\n';
    if (m_json) Print({{"file", file}, {"error", reason}});
  }

  int ExitCode() const { return m_exitCode; }

 private:
  void Print(const nlohmann::ordered_json& object) {
    m_invocation.Out << object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
  }

  bool m_json;
  Invocation& m_invocation;
  bool m_isFirst = true;
  int m_exitCode = ExitSuccess;
};

}  // namespace

int PrintVtfInfo(const std::vector<std::string>& files, bool json, jobs::InputContent& content,
                 Invocation& invocation) {
  // Only the program's own tool can tell the facts of a texture, so the SDK's is not asked.
  const auto folder = tools::OwnToolDirectory(tools::Vtf2tga);
  if (!folder) {
    invocation.Err << "Error: the program's own vtf2tga.exe is not in " << core::ProgramDirectory() << "/sdk\n";
    return ExitFailure;
  }
  FactsPrinter printer(json, invocation);
  tools::ToolRunOptions options;
  options.AnnounceStart = false;
  for (const std::string& file : files) {
    if (!jobs::IsOnDisk(file)) {
      std::string reason;
      const auto facts = jobs::TextureFacts(file, content.Files(), json, reason);
      for (const core::Trouble& trouble : content.TakeTroubles()) invocation.Err << "Warning: " << trouble.Text << '\n';
      facts ? printer.Print(file, *facts) : printer.Refuse(file, reason, "");
      continue;
    }
    process::Command command{tools::SdkToolPath(*folder, tools::Vtf2tga)};
    command.Word("-nopause").Word(json ? "-json" : "-info").Word("-i").InQuotes(file);
    const auto run = tools::RunTool(tools::ToolRun::Vtf2tga, command, options);
    const std::string said = run.Outcome.Log.Text();
    if (run.Outcome.Failure) {
      printer.Refuse(file, run.Outcome.Failure->Text(), file + ": " + run.Outcome.Failure->Text());
    } else if (!run.Outcome.End || run.Outcome.End->ExitCode != 0) {
      printer.Refuse(file, OneLine(said), OneLine(said));
    } else {
      printer.Print(file, PlainLines(said));
    }
  }
  return printer.ExitCode();
}

}  // namespace tarnwick::cli
