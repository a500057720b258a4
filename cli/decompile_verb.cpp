#include "cli/decompile_verb.h"

#include <CLI/CLI.hpp>

namespace tarnwick::cli {

void AddDecompileVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("decompile", "Turn compiled models into QC scripts and SMD files");
  verb->callback([&invocation] {
    invocation.Run = [&invocation] {
      invocation.Err << "Error: decompiling is not built yet\n";
      return ExitFailure;
    };
  });
}

}  // namespace tarnwick::cli
