#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "cli/invocation.h"
#include "cli/verbs.h"
#include "core/version.h"

namespace tarnwick::cli {

namespace {

/// Stands in front of an argument in square brackets while it is parsed. The parser would take "[a,b]" for a list of
/// two, but it may be the name of a folder or a project's value.
constexpr char WholeArgument = '\x01';

std::string Marked(std::string argument) {
  if (argument.starts_with('[') && argument.ends_with(']')) argument.insert(argument.begin(), WholeArgument);
  return argument;
}

std::string Unmarked(std::string argument) {
  if (argument.starts_with(WholeArgument)) argument.erase(0, 1);
  return argument;
}

/// A value behind a key may begin with a minus, as "-5" does: marks what stands in the place of a value in
/// "project set PROJECT KEY VALUE...". The verb's own flags stay what they are; behind "--" everything is a word.
void MarkProjectValues(std::vector<std::string>& arguments) {
  if (arguments.size() < 2 || arguments[0] != "project" || arguments[1] != "set") return;
  size_t words = 0;
  for (size_t i = 2; i < arguments.size() && arguments[i] != "--"; ++i) {
    std::string& argument = arguments[i];
    if (argument == "--new" || argument == "--force" || argument == "--help" || argument == "-h") continue;
    const bool isValue = words >= 2 && words % 2 == 0;
    if (isValue && argument.starts_with('-')) argument.insert(argument.begin(), WholeArgument);
    ++words;
  }
}

/// Lets every option of `app` and of its subcommands see its arguments without the mark.
void UnmarkArguments(CLI::App& app) {
  for (CLI::Option* option : app.get_options({})) {
    if (option->get_items_expected_max() > 0) option->transform(Unmarked);
  }
  for (CLI::App* subcommand : app.get_subcommands({})) UnmarkArguments(*subcommand);
}

/// Tells a wrong command line. The parser says that a verb is missing where there is none and where there is an unknown
/// one; then the verbs there are help more.
int Refuse(CLI::App& program, const CLI::ParseError& error, std::ostream& out, std::ostream& err) {
  CLI::App* chosen = &program;
  while (!chosen->get_subcommands().empty()) chosen = chosen->get_subcommands().front();
  const bool lacksVerb =
      error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError) && !chosen->get_subcommands({}).empty();
  if (!lacksVerb) return program.exit(error, out, err) == 0 ? ExitSuccess : ExitUsage;
  err << program.help();
  const std::vector<std::string> unknown = program.remaining(true);
  if (!unknown.empty()) err << "\nError: there is no \"" << Unmarked(unknown.front()) << "\" here\n";
  return ExitUsage;
}

}  // namespace

int RunProgram(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& err) {
  CLI::App program("Tools for people who make content for games on the Source engine.", "tarnwick-cli");
  program.set_version_flag("--version", core::VersionText("tarnwick-cli"));
  program.allow_windows_style_options(false);  // a path may begin with a slash there too
  program.require_subcommand(1);
  Invocation invocation{out, err, {}};
  for (const AddVerb addVerb : Verbs) addVerb(program, invocation);
  UnmarkArguments(program);
  std::vector<std::string> words(arguments + std::min(argumentCount, 1), arguments + argumentCount);
  for (std::string& word : words) word = Marked(word);
  MarkProjectValues(words);
  std::reverse(words.begin(), words.end());  // as the parser wants them
  const int exitCode = [&] {
    try {
      program.parse(std::move(words));
      return invocation.Run ? invocation.Run() : ExitUsage;
    } catch (const CLI::ParseError& error) {
      return Refuse(program, error, out, err);
    } catch (const std::exception& error) {  // memory ran out, at the latest
      err << "Error: " << error.what() << '\n';
      return ExitFailure;
    }
  }();
  // What was asked for and did not arrive was not done, for instance on a full disk.
  errno = 0;
  if (out.flush()) return exitCode;
  err << "Error: the output could not be written" << (errno != 0 ? std::string(": ") + std::strerror(errno) : "")
      << '\n';
  return exitCode == ExitSuccess ? ExitFailure : exitCode;
}

}  // namespace tarnwick::cli
