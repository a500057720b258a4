#include <gmock/gmock.h>

#include <sstream>

#include "command_line.h"
#ifndef _WIN32
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "core/program_directory.h"
#include "support/model_builder.h"

extern char** environ;
#endif

namespace tarnwick::cli {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using tests::RunCommand;

TEST(Program, ShowsWhatThereIsWhereAVerbIsMissingOrUnknown) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"fold"}, {"project", "fold"}}) {
    const auto result = RunCommand(words);
    EXPECT_EQ(result.ExitCode, ExitUsage);
    EXPECT_THAT(result.Err, HasSubstr("Subcommands:"));
    EXPECT_THAT(result.Err, EndsWith("Error: there is no \"fold\" here\n"));
  }
  EXPECT_EQ(RunCommand({}).ExitCode, ExitUsage);
  EXPECT_EQ(RunCommand({"--version"}).ExitCode, ExitSuccess);
}

TEST(Program, EveryVerbHelpsWithExamples) {
  const std::string help = RunCommand({"--help"}).Out;
  std::istringstream verbs(help.substr(help.find("Subcommands:\n") + 13));
  size_t count = 0;
  for (std::string line; std::getline(verbs, line);) {
    if (!line.starts_with("  ") || line[2] == ' ') continue;
    const std::string verb = line.substr(2, line.find(' ', 2) - 2);
    EXPECT_THAT(RunCommand({verb, "--help"}).Out, HasSubstr("\nExamples:\n  tarnwick-cli " + verb)) << verb;
    ++count;
  }
  EXPECT_GE(count, 8u);
}

#ifndef _WIN32
extern "C" void OnTestSignal(int) {}

TEST(Program, GivesSignalsBackToWhoHadThem) {
  const auto old = std::signal(SIGTERM, OnTestSignal);
  RunCommand({"decompile", "none.mdl"});
  EXPECT_EQ(std::signal(SIGTERM, old), OnTestSignal);
}

/// What a terminal shows of `text`, whose only commands are those that go back to the start of the line and clear it.
std::string ShownOf(const std::string& text) {
  std::string shown;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 4, "\r\033[K") == 0) {
      shown.resize(shown.rfind('\n') + 1);
      i += 3;
    } else if (text[i] != '\r') {
      shown += text[i];
    }
  }
  return shown;
}

TEST(Program, TheBarAtTheBottomOfATerminalMakesRoomForEveryLine) {
  const tests::ScratchFolder folder;
  for (const char* name : {"a", "b", "c"}) tests::ModelBuilder{}.Write(folder.Path("in"), name);
  tests::WriteText(folder.Path("in/bad.mdl"), "");
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(terminal, 0);
  ASSERT_EQ(grantpt(terminal) + unlockpt(terminal), 0);
  std::string program = core::ProgramDirectory() + "/tarnwick-cli";
  std::string in = folder.Path("in"), out = folder.Path("out");
  std::string words[] = {program, "decompile", "-j", "1", "-o", out, in};
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, folder.Path("results").c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, ptsname(terminal), O_RDWR | O_NOCTTY, 0);
  pid_t child = 0;
  ASSERT_EQ(posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  std::string text;
  char piece[1024];
  for (ssize_t size = 0; (size = read(terminal, piece, sizeof piece)) > 0;)
    text.append(piece, static_cast<size_t>(size));
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  EXPECT_THAT(text, HasSubstr("[##################......] 3/4 " + in + "/"));
  const std::string shown = ShownOf(text);
  EXPECT_THAT(shown, testing::StartsWith(in + "/bad.mdl: Error: Unable to load model: ")) << text;
  EXPECT_THAT(shown, HasSubstr("\n4 models, 6 files, ")) << text;
  EXPECT_THAT(shown, testing::Not(HasSubstr("/4 "))) << "the bar is gone";
}
#endif

TEST(Program, KeepsArgumentsInSquareBracketsWhole) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.sc");
  ASSERT_EQ(RunCommand({"project", "set", "--new", path, "Skin0/Skin Name", "[a,b]"}).ExitCode, ExitSuccess);
  EXPECT_EQ(RunCommand({"project", "get", path, "Skin0/Skin Name"}).Out, "[a,b]\n");
  EXPECT_THAT(RunCommand({"smd", "info", "[none]"}).Err, HasSubstr("[none]"));
  EXPECT_THAT(RunCommand({"smd", "replace", "[none]", "a", "b", "-y"}).Err, HasSubstr("Unable to read[none]"));
}

/// As a file on a full disk: nothing can be written.
class FullDisk : public std::streambuf {
 protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
};

TEST(Program, FailsWhereItsOutputCannotBeWritten) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("a.smd"), "nodes\n0 root -1\nend\n");
  const std::string project = folder.Path("a.sc");
  tests::RunCommand({"project", "set", "--new", project, "Model File", "a.mdl"});
  for (const std::vector<std::string>& words : {std::vector<std::string>{"--version"},
                                                {"--help"},
                                                {"decompile", "--help"},
                                                {"smd", "info", folder.Path("a.smd")},
                                                {"project", "keys"},
                                                {"project", "show", project},
                                                {"project", "get", "--json", project, "Model File"}}) {
    std::vector<const char*> pointers{"tarnwick-cli"};
    for (const std::string& word : words) pointers.push_back(word.c_str());
    FullDisk disk;
    std::ostream out(&disk);
    std::ostringstream err;
    EXPECT_EQ(RunProgram(static_cast<int>(pointers.size()), pointers.data(), out, err), ExitFailure) << words.back();
    EXPECT_THAT(err.str(), EndsWith("Error: the output could not be written\n"))
        << words.back() << ": no guessed reason";
  }
}

}  // namespace
}  // namespace tarnwick::cli
