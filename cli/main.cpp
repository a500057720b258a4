#include <iostream>

#include "cli/invocation.h"
#include "core/command_line.h"

int main(int argumentCount, char** arguments) {
  const tarnwick::core::CommandLine line(argumentCount, arguments);
  return tarnwick::cli::RunProgram(line.Count(), line.Words(), std::cout, std::cerr);
}
