#include <CLI/CLI.hpp>
#include <exception>

#include "cli/invocation.h"
#include "cli/verbs.h"

namespace tarnwick::cli {

int RunProgram(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& err) {
  CLI::App program("Tools for people who make content for games on the Source engine.", "tarnwick-cli");
  program.set_version_flag("--version", TARNWICK_VERSION);
  program.allow_windows_style_options(false);  // a path may begin with a slash there too
  program.require_subcommand(1);
  Invocation invocation{out, err, {}};
  for (const AddVerb addVerb : Verbs) addVerb(program, invocation);
  try {
    program.parse(argumentCount, arguments);
    return invocation.Run ? invocation.Run() : ExitUsage;
  } catch (const CLI::ParseError& error) {
    return program.exit(error, out, err) == 0 ? ExitSuccess : ExitUsage;
  } catch (const std::exception& error) {  // memory ran out, at the latest
    err << "Error: " << error.what() << '\n';
    return ExitFailure;
  }
}

}  // namespace tarnwick::cli
