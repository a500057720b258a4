#include <gmock/gmock.h>

#include <sstream>

#include "command_line.h"
#ifndef _WIN32
#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "support/model_builder.h"

extern char** environ;
#endif

namespace tarnwick::cli {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using tests::RunCommand;

TEST(Program, ShowsWhatThereIsWhereAVerbIsMissing) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{}, {"project"}}) {
    const auto result = RunCommand(words);
    EXPECT_EQ(result.ExitCode, ExitUsage);
    EXPECT_EQ(result.Out, "");
    EXPECT_THAT(result.Err, HasSubstr("\nVerbs:\n"));
  }
  EXPECT_EQ(RunCommand({"--version"}).ExitCode, ExitSuccess);
}

TEST(Program, TellsAWrongCommandLineInOneLineAndWhereToReadOn) {
  struct Case {
    std::vector<std::string> Words;
    std::string Error;
    std::string See;
  };
  for (const Case& wrong : {
           Case{{"decompil"}, "there is no verb \"decompil\"; did you mean \"decompile\"?", "tarnwick-cli"},
           Case{{"fold"}, "there is no verb \"fold\"", "tarnwick-cli"},
           Case{{"help", "fold"}, "there is no verb \"fold\"", "tarnwick-cli"},
           Case{{"project", "shwo"}, "there is no verb \"shwo\"; did you mean \"show\"?", "tarnwick-cli project"},
           Case{{"-x"}, "there is no option -x", "tarnwick-cli"},
           Case{{"verify", "a.mdl", "--outptu=x"}, "there is no option --outptu", "tarnwick-cli verify"},
           Case{{"decompile", "--outptu", "x"},
                "there is no option --outptu; did you mean \"--output\"?",
                "tarnwick-cli decompile"},
           Case{{"project", "show", "a.sc", "b.sc"}, "\"b.sc\" is one word too many", "tarnwick-cli project show"},
           Case{{"decompile"}, "MODEL|DIRECTORY is required", "tarnwick-cli decompile"},
       }) {
    const auto result = RunCommand(wrong.Words);
    EXPECT_EQ(result.ExitCode, ExitUsage) << wrong.Error;
    EXPECT_THAT(result.Err, testing::StartsWith("Error: " + wrong.Error + "\n"));
    EXPECT_THAT(result.Err, EndsWith("\nSee " + wrong.See + " --help\n"));
  }
}

TEST(Program, HelpsAlsoWhereHelpIsTypedAsAVerb) {
  EXPECT_EQ(RunCommand({"help"}).Out, RunCommand({"--help"}).Out);
  const auto help = RunCommand({"help", "smd", "replace"});
  EXPECT_EQ(help.ExitCode, ExitSuccess);
  EXPECT_THAT(help.Out, testing::StartsWith("Usage: tarnwick-cli smd replace [OPTIONS] FILE... OLD NEW\n"));
}

#ifndef _WIN32
TEST(Program, HelpIsAsWideAsTheTerminal) {
  const auto widest = [](const std::string& columns) {
    setenv("COLUMNS", columns.c_str(), 1);
    const std::string help = RunCommand({"decompile", "--help"}).Out;
    unsetenv("COLUMNS");
    std::istringstream lines(help.substr(0, help.find("\nExamples:")));
    size_t width = 0;
    for (std::string line; std::getline(lines, line);) {
      EXPECT_THAT(line, testing::Not(EndsWith(" ")));
      width = std::max(width, line.size());
    }
    return width;
  };
  EXPECT_LE(widest("60"), 60u);
  const size_t usual = widest("80");
  EXPECT_LE(usual, 80u);
  EXPECT_GT(usual, 60u);
  EXPECT_LE(widest("300"), 100u) << "longer lines are hard to read";
  EXPECT_EQ(widest("x"), usual) << "no terminal";
  EXPECT_EQ(widest("3"), usual);
}
#endif

#ifdef TARNWICK_HAS_IMAGES
TEST(Program, HelpTellsWhatAnOptionsValueIsAndWhatItGoesWith) {
  const std::string material = RunCommand({"material", "--help"}).Out;
  EXPECT_THAT(material, HasSubstr("\n  -d, --directory DIR   Compiled"));
  EXPECT_THAT(material, HasSubstr("\n  --mask base|normal|illum\n                        Take"));
  EXPECT_THAT(material, HasSubstr("(default: VertexLitGeneric)\n"));
  EXPECT_THAT(material, HasSubstr("Envmap tint, the same (only with --envmap)\n"));
  EXPECT_THAT(RunCommand({"picture", "--help"}).Out, HasSubstr("model (required)\n"));
}
#endif

TEST(Program, EveryVerbHelpsWithExamples) {
  const std::string help = RunCommand({"--help"}).Out;
  std::istringstream verbs(help.substr(help.find("Verbs:\n") + 7));
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

/// What the program prints on standard error, a terminal of so many columns (0: it does not tell), while it decompiles
/// the folder `in` of `folder`.
std::string PrintedOnTerminal(const tests::ScratchFolder& folder, unsigned short columns) {
  for (const char* name : {"a", "b", "c"}) tests::ModelBuilder{}.Write(folder.Path("in"), name);
  tests::WriteText(folder.Path("in/bad.mdl"), "");
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || grantpt(terminal) + unlockpt(terminal) != 0) return "no terminal";
  const winsize size{24, columns, 0, 0};
  ioctl(terminal, TIOCSWINSZ, &size);
  std::string program = tests::ProgramFile();
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
  const int failure = posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) return "no program";
  std::string text;
  char piece[1024];
  for (ssize_t count = 0; (count = read(terminal, piece, sizeof piece)) > 0;)
    text.append(piece, static_cast<size_t>(count));
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  return text;
}

TEST(Program, TheBarAtTheBottomOfATerminalMakesRoomForEveryLine) {
  const tests::ScratchFolder folder;
  const std::string in = folder.Path("in");
  const std::string text = PrintedOnTerminal(folder, 0);
  EXPECT_THAT(text, HasSubstr("[##################......] 3/4 " + in + "/"));
  const std::string shown = ShownOf(text);
  EXPECT_THAT(shown, testing::StartsWith(in + "/bad.mdl: Error: Unable to load model: ")) << text;
  EXPECT_THAT(shown, HasSubstr("\n4 models, 6 files, ")) << text;
  EXPECT_THAT(shown, testing::Not(HasSubstr("/4 "))) << "the bar is gone";
}

TEST(Program, TheBarNeverBreaksIntoTheNextLine) {
  const tests::ScratchFolder folder;  // whose path alone is too long
  const std::string text = PrintedOnTerminal(folder, 40);
  EXPECT_THAT(text, HasSubstr("\r\033[K[#########....] 3/4 ..."));
  const std::string start = "\r\033[K[";
  for (size_t bar = text.find(start); bar != std::string::npos; bar = text.find(start, bar + 1)) {
    const size_t first = bar + start.size() - 1;
    EXPECT_LT(text.find('\r', first) - first, 40u) << text.substr(first, 80);
  }
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
