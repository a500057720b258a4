// Sits in the worker's jail and tries to get out of it: prints what it gets, a line a try. The words are a folder to
// write to; "child" only ends.

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/paths.h"
#include "images/limits.h"
#include "images/worker/jail.h"

namespace {

void Say(const char* what, bool got) {
  std::printf("%s: %s\n", what, got ? "escaped" : "refused");
}

bool StartsAProgram() {
  wchar_t program[1024];
  GetModuleFileNameW(nullptr, program, 1024);
  std::wstring line = L"\"" + std::wstring(program) + L"\" child";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  return CreateProcessW(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) != 0;
}

bool MakesAFile(const std::string& folder) {
  const HANDLE file = CreateFileW(tarnwick::core::NativePath(folder + "\\escaped").c_str(), GENERIC_WRITE, 0, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  return file != INVALID_HANDLE_VALUE;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  using namespace tarnwick::images;
  if (argumentCount < 2 || std::strcmp(arguments[1], "child") == 0) return 0;
  std::string reason;
  if (!LimitResources(reason) || !EnterJail(reason)) {
    std::printf("no jail: %s\n", reason.c_str());
    return 1;
  }
  Say("memory", VirtualAlloc(nullptr, static_cast<SIZE_T>(LargestMemory) + 1, MEM_RESERVE | MEM_COMMIT,
                             PAGE_READWRITE) != nullptr);
  Say("process", StartsAProgram());
  Say("file", MakesAFile(arguments[1]));
  Say("code", VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_EXECUTE_READWRITE) != nullptr);
  return 0;
}
