#include <iostream>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "cli/invocation.h"
#include "core/command_line.h"

namespace {

/// Memory that a job gives back serves the next one, instead of going to the system and coming back page by page.
void KeepMemory() {
#ifdef __GLIBC__
  constexpr int Kept = 512 << 20, Mapped = 32 << 20;
  mallopt(M_TRIM_THRESHOLD, Kept);
  mallopt(M_MMAP_THRESHOLD, Mapped);
#endif
}

}  // namespace

int main(int argumentCount, char** arguments) {
  KeepMemory();
  const tarnwick::core::CommandLine line(argumentCount, arguments);
  return tarnwick::cli::RunProgram(line.Count(), line.Words(), std::cout, std::cerr);
}
