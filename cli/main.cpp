#include <iostream>

#include "cli/invocation.h"

int main(int argumentCount, char** arguments) {
  return tarnwick::cli::RunProgram(argumentCount, arguments, std::cout, std::cerr);
}
