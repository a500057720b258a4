#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <span>
#include <string>
#include <vector>

#include "cli/completions_verb.h"
#include "cli/help_formatter.h"
#include "cli/invocation.h"
#include "cli/terminal.h"
#include "cli/verbs.h"
#include "core/near_name.h"
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

/// The words of `app`'s verb as they are typed: "tarnwick-cli smd replace".
std::string WordsOf(const CLI::App& app) {
  return app.get_parent() == nullptr ? app.get_name() : WordsOf(*app.get_parent()) + ' ' + app.get_name();
}

/// "; did you mean \"decompile\"?", or nothing.
std::string LikelyMeant(const std::string& typed, const std::vector<std::string>& words) {
  constexpr size_t LongestShort = 2;  // "-x" is near to every other letter
  if (typed.size() <= LongestShort) return "";
  core::NearName near(typed);
  for (const std::string& word : words) near.Offer(word);
  return near.Best().empty() ? "" : "; did you mean \"" + near.Best() + "\"?";
}

std::vector<std::string> VerbNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(verb->get_name());
  }
  return names;
}

std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

/// What is wrong with a word that nothing is known by.
std::string UnknownWord(const CLI::App& app, const std::string& word, bool lacksVerb) {
  if (word.starts_with('-')) {
    const std::string name = word.substr(0, word.find('='));
    return "there is no option " + name + LikelyMeant(name, OptionNames(app));
  }
  if (!lacksVerb) return "\"" + word + "\" is one word too many";
  return "there is no verb \"" + word + "\"" + LikelyMeant(word, VerbNames(app));
}

/// Tells a wrong command line in one line, and where to read on. Where no verb was named the verbs there are help more.
int Refuse(CLI::App& program, const CLI::ParseError& error, std::ostream& out, std::ostream& err) {
  const auto is = [&error](CLI::ExitCodes code) { return error.get_exit_code() == static_cast<int>(code); };
  CLI::App* chosen = &program;
  while (!chosen->get_subcommands().empty()) chosen = chosen->get_subcommands().front();
  const std::vector<std::string> unknown = program.remaining(true);
  const bool needsVerb = chosen->get_require_subcommand_min() > 0;
  const bool isAnswered = is(CLI::ExitCodes::Success);  // with the help or the version
  if (isAnswered && (!needsVerb || unknown.empty())) {
    program.exit(error, out, err);
    return ExitSuccess;
  }
  // The parser says that a verb is missing where there is none and where there is an unknown one.
  const bool lacksVerb = needsVerb && (isAnswered || is(CLI::ExitCodes::RequiredError));
  if (lacksVerb && unknown.empty()) {
    err << chosen->help(chosen == &program ? "" : WordsOf(*chosen->get_parent()));
    return ExitUsage;
  }
  const bool isUnknown = !unknown.empty() && (lacksVerb || is(CLI::ExitCodes::ExtrasError));
  err << "Error: " << (isUnknown ? UnknownWord(*chosen, Unmarked(unknown.front()), lacksVerb) : error.what()) << '\n';
  if (lacksVerb) err << "Verbs: " << CLI::detail::join(VerbNames(*chosen), ", ") << '\n';
  err << "See " << WordsOf(*chosen) << " --help\n";
  return ExitUsage;
}

/// "help", and "help VERB", as people type them too, for "--help" and "VERB --help".
void TakeHelpAsVerb(std::vector<std::string>& words) {
  if (words.empty() || words.front() != "help") return;
  words.erase(words.begin());
  words.emplace_back("--help");
}

/// Adds the verb that is called, if it is clear which that is; all of them take longer than many a model does. The one
/// that completes words needs all.
void AddVerbs(const std::vector<std::string>& words, CLI::App& program, Invocation& invocation) {
  const auto isCalled = [&](const Verb& verb) { return !words.empty() && verb.Name == words.front(); };
  const auto called = std::find_if(Verbs.begin(), Verbs.end(), isCalled);
  const bool isEnough = called != Verbs.end() && called->Add != &AddCompletionsVerb;
  for (const Verb& verb : isEnough ? std::span(called, 1) : Verbs) verb.Add(program, invocation);
}

}  // namespace

int RunProgram(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& err) {
  CLI::App program("Tools for people who make content for games on the Source engine.", "tarnwick-cli");
  program.set_version_flag("--version", core::VersionText("tarnwick-cli"));
  program.allow_windows_style_options(false);  // a path may begin with a slash there too
  program.require_subcommand(1);
  program.formatter(std::make_shared<HelpFormatter>(TerminalColumns(TerminalStream::Output)));  // verbs inherit it
  Invocation invocation{out, err, {}};
  std::vector<std::string> words(arguments + std::min(argumentCount, 1), arguments + argumentCount);
  for (std::string& word : words) word = Marked(word);
  MarkProjectValues(words);
  TakeHelpAsVerb(words);
  AddVerbs(words, program, invocation);
  UnmarkArguments(program);
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
