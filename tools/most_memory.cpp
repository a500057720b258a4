#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "core/sanitized.h"
#include "tools/console_capture.h"

namespace tarnwick::tools {

uint64_t DefaultMostMemory() {
  if (TARNWICK_SANITIZED) return 0;
#ifdef _WIN32
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
#else
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long size = sysconf(_SC_PAGESIZE);
  return pages > 0 && size > 0 ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(size) : 0;
#endif
}

}  // namespace tarnwick::tools
