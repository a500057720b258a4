// A console tool for the tests: it does what its first argument says, so that what reaches a tool and what comes back
// from it can be told to the byte.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>

#include <csignal>
#endif

namespace {

void PrintArguments(int count, char** arguments) {
  for (int i = 2; i < count; ++i) std::printf("[%s]\n", arguments[i]);
}

void PrintInput() {
  for (int c = std::getchar(); c != EOF; c = std::getchar()) std::printf("%02x ", static_cast<unsigned>(c));
  std::printf("end\n");
}

void PrintOnBothStreams() {
  for (int i = 0; i < 3; ++i) {
    std::fprintf(stdout, "out%d ", i);
    std::fflush(stdout);
    std::fprintf(stderr, "err%d ", i);
    std::fflush(stderr);
  }
}

void Fill(long count) {
  for (long i = 0; i < count; ++i) std::putchar('a' + static_cast<int>(i % 26));
}

void Sleep(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void PrintProcess() {
#ifdef _WIN32
  std::printf("process %lu\n", GetCurrentProcessId());
#else
  std::printf("process %ld\n", static_cast<long>(getpid()));
#endif
  std::fflush(stdout);
}

/// Starts this program again, with `mode` and `milliseconds`; it holds the same output. `apart` takes it out of this
/// program's process group.
void StartGrandchild(char* program, const char* mode, const char* milliseconds, bool apart) {
#ifdef _WIN32
  std::string line = "\"" + std::string(program) + "\" " + mode + " " + milliseconds;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, apart ? CREATE_NEW_PROCESS_GROUP : 0, nullptr, nullptr,
                 &startup, &process);
#else
  if (fork() != 0) return;
  if (apart) setsid();
  execl(program, program, mode, milliseconds, static_cast<char*>(nullptr));
  std::_Exit(127);
#endif
}

#ifndef _WIN32
/// Starts this program again as a daemon: a child of nobody's, in a session of its own, with an empty environment.
void StartDaemon(char* program, const char* milliseconds) {
  if (fork() != 0) return;
  setsid();
  if (fork() != 0) std::_Exit(0);
  char* words[] = {program, const_cast<char*>("stubborn"), const_cast<char*>(milliseconds), nullptr};
  char* nothing[] = {nullptr};
  execve(program, words, nothing);
  std::_Exit(127);
}
#endif

}  // namespace

int main(int count, char** arguments) {
  const std::string_view mode = count > 1 ? arguments[1] : "";
  const char* value = count > 2 ? arguments[2] : "0";
  if (mode == "arguments") {
    PrintArguments(count, arguments);
  } else if (mode == "input") {
    PrintInput();
  } else if (mode == "streams") {
    PrintOnBothStreams();
  } else if (mode == "fill") {
    Fill(std::atol(value));
  } else if (mode == "wait") {
    PrintProcess();
    Sleep(std::atoi(value));
    std::printf("waited\n");
  } else if (mode == "stubborn") {
#ifndef _WIN32
    std::signal(SIGTERM, SIG_IGN);
#endif
    PrintProcess();
    Sleep(std::atoi(value));
  } else if (mode == "leave" || mode == "leave-apart") {
    StartGrandchild(arguments[0], "wait", value, mode == "leave-apart");
  } else if (mode == "parent") {  // with a child of its own, apart, as long as it waits itself
    StartGrandchild(arguments[0], "stubborn", value, true);
    PrintProcess();
    Sleep(std::atoi(value));
#ifndef _WIN32
  } else if (mode == "daemon") {  // beside its starter, which waits
    StartDaemon(arguments[0], value);
    PrintProcess();
    Sleep(std::atoi(value));
  } else if (mode == "daemon-alone") {
    StartDaemon(arguments[0], value);
#endif
  } else if (mode == "self") {
    std::printf("%s\n", arguments[0]);
  } else if (mode == "memory" || mode == "slow-memory") {  // so many megabytes
    if (mode == "slow-memory") Sleep(50);
    const size_t size = static_cast<size_t>(std::atoi(value)) << 20;
    void* volatile memory = std::malloc(size);
    std::printf("%s %s\n", memory != nullptr ? "got" : "refused", value);
    std::free(memory);
  } else if (mode == "exit") {
    return std::atoi(value);
  } else if (mode == "crash") {
#ifdef _WIN32
    TerminateProcess(GetCurrentProcess(), EXCEPTION_ACCESS_VIOLATION);  // as if one had ended it, but at once
#else
    std::abort();
#endif
  }
  return 0;
}
