// The program as a child of its own, ended by signals as a terminal or a service manager sends them.
#ifndef _WIN32

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/program_directory.h"
#include "support/archive_builder.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"

extern char** environ;

namespace tarnwick::cli {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// tarnwick-cli with these arguments, its standard output read here and its standard error going to a file.
class ChildProgram {
 public:
  ChildProgram(std::vector<std::string> arguments, const std::string& errorFile) : m_errorFile(errorFile) {
    arguments.insert(arguments.begin(), core::ProgramDirectory() + "/tarnwick-cli");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    fcntl(ends[0], F_SETPIPE_SZ, 4096);  // a program that prints more waits for its reader, and so for the signal
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, errorFile.c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(posix_spawn(&m_id, pointers[0], &actions, nullptr, pointers.data(), environ), 0) << pointers[0];
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    m_out = ends[0];
  }
  ~ChildProgram() {
    if (m_id > 0) kill(m_id, SIGKILL);
    close(m_out);
  }

  /// Waits until it has printed something: it is at work then.
  void WaitForOutput() {
    char first = 0;
    EXPECT_EQ(read(m_out, &first, 1), 1);
  }
  void Signal(int number) { EXPECT_EQ(kill(m_id, number), 0); }
  /// Waits for its end; its exit code, or minus the signal that ended it.
  int Wait() {
    char rest[4096];
    while (read(m_out, rest, sizeof rest) > 0) {
    }
    int status = 0;
    waitpid(m_id, &status, 0);
    m_id = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  std::string ErrorText() const { return tests::ReadText(m_errorFile); }

 private:
  std::string m_errorFile;
  pid_t m_id = 0;
  int m_out = -1;
};

/// Whether the process is there and no mere entry that nobody has waited for.
bool IsAlive(int id) {
  std::ifstream file("/proc/" + std::to_string(id) + "/stat");
  const std::string stat{std::istreambuf_iterator<char>(file), {}};
  return !stat.empty() && stat.find(") Z ") == std::string::npos;
}

class Interrupt : public testing::TestWithParam<int> {
 protected:
  // A child inherits that a signal is ignored, as SIGHUP is where these tests run under nohup.
  void SetUp() override { m_before = std::signal(GetParam(), SIG_DFL); }
  void TearDown() override { std::signal(GetParam(), m_before); }

  tests::ScratchFolder m_folder;

 private:
  void (*m_before)(int) = SIG_DFL;
};

TEST_P(Interrupt, LeavesNoTemporaryFileOfADecompileAndGivesASummary) {
  constexpr int Models = 400;
  const std::string model = tests::ModelBuilder{}.Write(m_folder.Path("real"));
  fs::create_directory(m_folder.Path("models"));
  for (int i = 0; i < Models; ++i) {
    for (const char* ending : {".mdl", ".vvd", ".dx90.vtx"}) {
      fs::create_hard_link(m_folder.Path("real/cube") + ending,
                           m_folder.Path("models/cube" + std::to_string(i)) + ending);
    }
  }
  ChildProgram program({"decompile", "-j", "2", "-o", m_folder.Path("out"), m_folder.Path("models")},
                       m_folder.Path("errors"));
  program.WaitForOutput();
  program.Signal(GetParam());
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_THAT(program.ErrorText(),
              AllOf(HasSubstr("\n400 models, "), HasSubstr(" 0 failed"), HasSubstr(" not begun\n")));
  size_t written = 0;
  for (const auto& entry : fs::recursive_directory_iterator(m_folder.Path("out"))) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".tarnwick")) << entry.path();
    ++written;
  }
  EXPECT_GT(written, 0u);
}

TEST_P(Interrupt, EndsAToolWithAllThatItStarted) {
  tests::WriteShellProgram(m_folder.Path("sdk/studiomdl.exe"),
                           "sleep 61 &\necho $! >" + m_folder.Path("child") + "\necho at work\nwait\n");
  tests::WriteText(m_folder.Path("game/gameinfo.txt"), "");
  tests::WriteText(m_folder.Path("a.qc"), "$modelname a.mdl\n");
  ChildProgram program({"compile", "--json", "--sdk", m_folder.Path("sdk"), "--game", m_folder.Path("game"),
                        m_folder.Path("a.qc"), m_folder.Path("a.qc")},
                       m_folder.Path("errors"));
  while (program.ErrorText().find("at work") == std::string::npos) usleep(1000);
  program.Signal(GetParam());
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_THAT(program.ErrorText(), HasSubstr("1 stopped, 1 not begun"));
  EXPECT_FALSE(IsAlive(std::stoi(tests::ReadText(m_folder.Path("child"))))) << "what the tool started is gone too";
}

TEST_P(Interrupt, EndsTheViewerOfACopyAndTakesTheCopyAway) {
  tests::WriteText(m_folder.Path("a.gma"),
                   tests::GmaBuilder{.Files = {{.Name = "models/a.mdl", .Bytes = "x"}}}.Build());
  const std::string said = m_folder.Path("said"), ended = m_folder.Path("ended");
  tests::WriteShellProgram(m_folder.Path("sdk/hlmv.exe"), "echo \"$3\" >" + said + ".new\nmv " + said + ".new " + said +
                                                              "\nsleep 61\necho >" + ended + "\n");
  ChildProgram program({"view", "--sdk", m_folder.Path("sdk"), "--game", m_folder.Path("game"),
                        m_folder.Path("a.gma") + ":models/a.mdl"},
                       m_folder.Path("errors"));
  while (!fs::exists(said)) usleep(1000);
  std::string copy = tests::ReadText(said);
  copy.pop_back();
  EXPECT_TRUE(fs::exists(copy));
  program.Signal(GetParam());
  program.Wait();
  EXPECT_FALSE(fs::exists(ended)) << "it was not waited for";
  EXPECT_FALSE(fs::exists(copy));
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupt, testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT),
                         [](const auto& each) { return std::string(sigabbrev_np(each.param)); });

TEST_P(Interrupt, BetweenTwoArchivesIsToldAndNoSuccess) {
  const std::string archive = m_folder.Path("a.gma");
  tests::WriteText(archive, tests::GmaBuilder{.Files = {{.Name = "a.txt", .Bytes = "x"}}}.Build());
  for (const std::vector<std::string>& verb :
       {std::vector<std::string>{"extract", "-o", m_folder.Path("out")}, {"info", "--check"}}) {
    std::vector<std::string> words{"archive", verb[0], "--json"};
    words.insert(words.end(), verb.begin() + 1, verb.end());
    words.insert(words.end(), 100, archive);
    ChildProgram program(words, m_folder.Path(verb[0] + " errors"));
    program.WaitForOutput();
    program.Signal(GetParam());
    EXPECT_EQ(program.Wait(), 1) << verb[0];
    EXPECT_THAT(program.ErrorText(), testing::EndsWith("a.gma: not begun\n"));
  }
}

TEST(InterruptTest, ASignalThatIsIgnoredFromTheStartStaysIgnored) {
  tests::ScratchFolder folder;
  const auto old = std::signal(SIGHUP, SIG_IGN);  // as under nohup; a child inherits it
  tests::WriteShellProgram(folder.Path("sdk/studiomdl.exe"), "echo at work\nsleep 0.2\necho done\n");
  tests::WriteText(folder.Path("game/gameinfo.txt"), "");
  tests::WriteText(folder.Path("a.qc"), "");
  ChildProgram program({"compile", "--sdk", folder.Path("sdk"), "--game", folder.Path("game"), folder.Path("a.qc")},
                       folder.Path("errors"));
  program.WaitForOutput();
  program.Signal(SIGHUP);
  program.Wait();
  std::signal(SIGHUP, old);
  EXPECT_THAT(program.ErrorText(), Not(HasSubstr("stopped")));
}

}  // namespace
}  // namespace tarnwick::cli

#else

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "core/paths.h"
#include "core/program_directory.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

/// tarnwick-cli as a process group of this program's console, its standard output read here.
class ChildProgram {
 public:
  ChildProgram(const std::string& arguments, const std::string& errorFile) : m_errorFile(errorFile) {
    AllocConsole();  // fails, rightly, where there is one
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE output = nullptr;
    EXPECT_TRUE(CreatePipe(&m_output, &output, &inherited, 1024));
    SetHandleInformation(m_output, HANDLE_FLAG_INHERIT, 0);
    const HANDLE errors =
        CreateFileW(fs::path(errorFile).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = errors;
    const fs::path program = core::NativePath(core::ProgramDirectory() + "/tarnwick-cli.exe");
    std::wstring line = fs::path("tarnwick-cli " + arguments).native();
    EXPECT_TRUE(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr,
                               nullptr, &startup, &m_process));
    CloseHandle(output);
    CloseHandle(errors);
  }
  ~ChildProgram() {
    TerminateProcess(m_process.hProcess, 9);
    for (const HANDLE each : {m_process.hProcess, m_process.hThread, m_output}) CloseHandle(each);
  }

  /// Waits until it has printed something: it is at work then.
  void WaitForOutput() { EXPECT_TRUE(ReadSome()); }
  bool Interrupt() { return GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, m_process.dwProcessId) != 0; }
  /// Waits for its end; its exit code.
  DWORD Wait() {
    while (ReadSome()) {
    }
    WaitForSingleObject(m_process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(m_process.hProcess, &code);
    return code;
  }
  std::string ErrorText() const { return tests::ReadText(m_errorFile); }

 private:
  bool ReadSome() {
    char text[64];
    DWORD size = 0;
    return ReadFile(m_output, text, sizeof text, &size, nullptr) && size > 0;
  }

  std::string m_errorFile;
  HANDLE m_output = nullptr;
  PROCESS_INFORMATION m_process{};
};

TEST(Interrupt, FromTheConsoleLeavesNoTemporaryFileAndGivesASummary) {
  const tests::ScratchFolder folder;
  for (int i = 0; i < 60; ++i) tests::ModelBuilder{}.Write(folder.Path("models"), "cube" + std::to_string(i));
  ChildProgram program("decompile -j 2 -o \"" + folder.Path("out") + "\" \"" + folder.Path("models") + '"',
                       folder.Path("errors"));
  program.WaitForOutput();
  if (!program.Interrupt()) GTEST_SKIP() << "this console sends no events: error " << GetLastError();
  EXPECT_EQ(program.Wait(), 1u);
  EXPECT_THAT(program.ErrorText(),
              AllOf(HasSubstr("\n60 models, "), HasSubstr(" 0 failed"), HasSubstr(" not begun\n")));
  size_t written = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder.Path("out"))) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".tarnwick")) << entry.path();
    ++written;
  }
  EXPECT_GT(written, 0u);
}

}  // namespace
}  // namespace tarnwick::cli

#endif
