#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "command_line.h"
#include "support/scratch_folder.h"

namespace tarnwick::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using tests::ReadText;
using tests::RunCommand;
using tests::WriteText;

TEST(ProjectVerb, BuildsAProjectAndItsScript) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("crate.sc");
  EXPECT_EQ(RunCommand({"project", "set", path, "Model File", "a.mdl"}).ExitCode, ExitFailure);
  auto result =
      RunCommand({"project", "set", "--new", path, "Model File", "a.mdl", "Reference SMD", folder.Path("crate.smd"),
                  "Phy SMD Check", "1", "Model Options/Prop Type", "1", "Animation0/Name", "spin",
                  "Animation0/SMD Name", "spin.smd", "Animation0/Command0", "fade \"1\""});
  EXPECT_EQ(result.ExitCode, ExitSuccess) << result.Err;
  EXPECT_EQ(RunCommand({"project", "get", path, "Animation0/Name", "Animation0/Command0"}).Out, "spin\nfade \"1\"\n");
  EXPECT_THAT(RunCommand({"project", "show", "--json", path}).Out, HasSubstr("\"Animation0/FPS\": \"30.00\""));
  result = RunCommand({"qc", "-m", "props", path});
  EXPECT_THAT(result.Err, AllOf(HasSubstr("Reference SMD " + folder.Path("crate.smd") + " is not there"),
                                HasSubstr("sequence \"spin\" the Animation SMD spin.smd is not there")));
  WriteText(folder.Path("crate.smd"), "");
  WriteText(folder.Path("Spin.smd"), "");
  result = RunCommand({"qc", "-m", "props", path});
  EXPECT_EQ(result.Out, folder.Path("crate.qc") + "\n");
  EXPECT_EQ(result.Err, "");
  EXPECT_THAT(ReadText(folder.Path("crate.qc")), HasSubstr("     fade \"1\"\n"));

  const std::string before = ReadText(path);
  result = RunCommand({"project", "set", path, "Model File", "b.mdl", "Animation7/Name", "x"});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_THAT(result.Err, HasSubstr(path));
  EXPECT_EQ(ReadText(path), before);
  EXPECT_EQ(RunCommand({"project", "set", path, "Model File"}).ExitCode, ExitUsage);
  EXPECT_EQ(RunCommand({"project", "remove", path, "Animation0"}).ExitCode, ExitSuccess);
  EXPECT_THAT(RunCommand({"qc", path}).Err, HasSubstr("No Sequences Specified"));
}

TEST(ProjectVerb, TellsWhatAProjectHasNotAndChangesNothing) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.sc"), gone = folder.Path("gone.sc");
  ASSERT_EQ(RunCommand({"project", "set", "--new", path, "Model File", "a.mdl"}).Err, "");
  const std::string before = ReadText(path);
  auto result = RunCommand({"project", "get", path, "Nothing", "Model File"});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_EQ(result.Out, "a.mdl\n");
  EXPECT_EQ(result.Err, "Error: " + path + ": the project has no Nothing\n");
  EXPECT_EQ(RunCommand({"project", "get", "--json", path, "Nothing", "Model File"}).Out,
            "{\n  \"Model File\": \"a.mdl\"\n}\n");
  result = RunCommand({"project", "remove", path, "Animation0"});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_EQ(result.Err, "Error: " + path + ": The project has no Animation0. Nothing was changed\n");
  EXPECT_EQ(RunCommand({"project", "set", path, "Model File", "b.mdl", "Scale"}).Err,
            "Error: Scale has no value behind it\n");
  EXPECT_EQ(ReadText(path), before);
  // An older file of the name is changed, not made anew.
  ASSERT_EQ(RunCommand({"project", "set", "--new", path, "Reference SMD", "a.smd", "Phy SMD Check", "1"}).ExitCode,
            ExitSuccess);
  EXPECT_EQ(RunCommand({"project", "get", path, "Model File"}).Out, "a.mdl\n");

  EXPECT_EQ(RunCommand({"project", "set", gone, "Model File", "a"}).Err,
            "Error: " + gone + ": there is no such file; --new makes one\n");
  for (const char* verb : {"show", "get", "remove"}) {
    std::vector<std::string> words{"project", verb, gone};
    if (words[1] != "show") words.push_back("Model File");
    result = RunCommand(words);
    EXPECT_EQ(result.ExitCode, ExitFailure) << verb;
    EXPECT_THAT(result.Err, HasSubstr(gone)) << verb;
    EXPECT_EQ(result.Out, "") << verb;
  }
  EXPECT_FALSE(std::filesystem::exists(gone));
  result = RunCommand({"qc", "--json", gone, path});
  EXPECT_EQ(result.ExitCode, ExitFailure);
  EXPECT_THAT(result.Out, HasSubstr("{\"project\":\"" + gone + "\",\"outcome\":\"failed\",\"errors\":[\"Project "));
  const auto second = nlohmann::json::parse(result.Out.substr(result.Out.find('\n')));
  ASSERT_EQ(second["warnings"].size(), 1u);
  EXPECT_EQ(tests::WithSlashes(second["warnings"][0].get<std::string>()),
            "the Reference SMD " + folder.Path("a.smd") + " is not there");
  EXPECT_THAT(result.Err, HasSubstr(gone + ": no script was written\n"));
}

TEST(ProjectVerb, TellsWhatEachKeyTakes) {
  const std::string keys = "\n" + RunCommand({"project", "keys"}).Out;
  EXPECT_THAT(keys, HasSubstr("\nModel File: Compiled Model File (text)\n"));
  EXPECT_THAT(keys, HasSubstr("\nPhy SMD Check: Use Reference SMD as collision (0 | 1)\n"));
  EXPECT_THAT(keys, HasSubstr("Model Type (prop_static | prop_dynamic | prop_physics | weapon | character)\n"));
  EXPECT_THAT(keys, HasSubstr("\nModel Options/Scale: Scale (number, 1.0 unless given)\n"));
}

TEST(ProjectVerb, TakesValuesThatBeginWithAMinus) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("a.sc");
  ASSERT_EQ(RunCommand({"project", "set", path, "--new", "Model Options/Mass", "-5", "Skin0/Skin Name", "-old"}).Err,
            "");
  EXPECT_EQ(RunCommand({"project", "get", path, "Model Options/Mass", "Skin0/Skin Name"}).Out, "-5.00\n-old\n");
  ASSERT_EQ(RunCommand({"project", "set", path, "--", "Skin0/Skin Name", "--new"}).Err, "");
  const auto result = RunCommand({"project", "get", "--json", path, "Skin0/Skin Name"});
  EXPECT_EQ(result.Out, "{\n  \"Skin0/Skin Name\": \"--new\"\n}\n");
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{"project", "set", "--frce", path, "Model File", "b"},
        {"project", "set", path, "-x", "b"},
        {"project", "get", path, "-x", "-y"},
        {"smd", "replace", path, "a", "-b", "-y"}}) {
    EXPECT_EQ(RunCommand(wrong).ExitCode, ExitUsage) << testing::PrintToString(wrong) << ": no value, but an option";
  }
  for (const char* help : {"--help", "-h"}) {
    EXPECT_THAT(RunCommand({"project", "set", path, "Model File", help}).Out, HasSubstr("Usage:")) << help;
  }
}

TEST(ProjectVerb, WritesTheScriptBesideTheProjectWhereverItIsCalled) {
  tests::ScratchFolder folder;
  std::filesystem::create_directory(folder.Path("sub"));
  const std::string path = folder.Path("sub/a.sc");
  RunCommand({"project", "set", "--new", path, "Model File", "a.mdl", "Reference SMD", "a.smd", "Phy SMD Check", "1"});
  WriteText(folder.Path("sub/a.smd"), "");
  WriteText(folder.Path("sub/a.qc"), "$modelname \"mine.mdl\"\n");
  const auto result = RunCommand({"qc", "--json", path});
  EXPECT_EQ(result.ExitCode, ExitSuccess);
  EXPECT_THAT(result.Out, HasSubstr("\"script\":\"" + folder.Path("sub/a.qc") + "\",\"errors\":[],\"warnings\":[]"));
  EXPECT_THAT(result.Err, HasSubstr("kept as \"" + folder.Path("sub/a.qc.bak") + "\""));
  EXPECT_EQ(ReadText(folder.Path("sub/a.qc.bak")), "$modelname \"mine.mdl\"\n");
}

TEST(ProjectVerb, DoesNotSaveOverWhatItCouldNotLoad) {
  tests::ScratchFolder folder;
  const std::string path = folder.Path("old.sc");
  const std::string text = "\"Model Compiler/Model File\" \"a.mdl\"\n\n\"Model Compiler/Skin0/Skin Name\" \"s\"\n";
  WriteText(path, text);
  for (const std::vector<std::string>& words : {std::vector<std::string>{"project", "set", path, "Model File", "b.mdl"},
                                                {"project", "remove", path, "Skin0"}}) {
    EXPECT_EQ(RunCommand(words).ExitCode, ExitFailure);
    EXPECT_EQ(ReadText(path), text);
  }
  EXPECT_EQ(RunCommand({"project", "set", "--force", path, "Model File", "b.mdl"}).ExitCode, ExitSuccess);
  EXPECT_EQ(RunCommand({"project", "get", path, "Model File"}).Out, "b.mdl\n");
}

TEST(ProjectVerb, NamesOnlyKeysThatCanBeSet) {
  tests::ScratchFolder folder;
  std::istringstream keys(RunCommand({"project", "keys"}).Out);
  std::vector<std::string> words{"project", "set", "--new", folder.Path("a.sc")};
  for (std::string line; std::getline(keys, line);) {
    std::string key = line.substr(0, line.find(": "));
    for (size_t at = key.find('<'); at != std::string::npos; at = key.find('<')) key.replace(at, 3, "0");
    words.insert(words.end(), {key, "1"});
  }
  EXPECT_EQ(RunCommand(words).Err, "");

  // And names all: what such a project holds is what was set.
  std::set<std::string> named;
  for (size_t i = 4; i < words.size(); i += 2) named.insert(words[i]);
  std::set<std::string> held;
  std::istringstream shown(RunCommand({"project", "show", folder.Path("a.sc")}).Out);
  for (std::string line; std::getline(shown, line);) held.insert(line.substr(0, line.find(": ")));
  EXPECT_EQ(held, named);
}

}  // namespace
}  // namespace tarnwick::cli
