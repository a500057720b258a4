// A file may be called anything that the system allows. Names that look like pieces of a command line must reach the
// tools as names, in every verb that hands one over.
#ifndef _WIN32

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "command_line.h"
#include "images/test_image.h"
#include "support/model_builder.h"
#include "support/vtf_builder.h"

namespace tarnwick::tests {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

/// Names that together hold every character that a name can hold; a backslash parts folders everywhere in the program.
std::vector<std::string> AllCharacters() {
  std::vector<std::string> names;
  for (int c = 1; c < 256; ++c) {
    if (c == '/' || c == '\\') continue;
    if (names.empty() || names.back().size() == 17) names.emplace_back("n");
    names.back() += static_cast<char>(c);
  }
  return names;
}

class FileNames : public testing::Test {
 protected:
  std::string Texture(const std::string& name) {
    WriteText(Folder.Path(name), VtfBuilder().Build());
    return Folder.Path(name);
  }
  ScratchFolder Folder;
};

TEST_F(FileNames, ATextureCannotNameItsImageByItsOwnName) {
  Texture("tree/water.vtf\" -o \"pwned.vtf");
  Texture("tree/a\"b.vtf");
  const fs::path before = fs::current_path();
  fs::create_directory(Folder.Path("here"));
  fs::current_path(Folder.Path("here"));
  const auto result = RunCommand({"vtf", "-r", "-o", Folder.Path("out"), Folder.Path("tree")});
  fs::current_path(before);
  EXPECT_EQ(result.ExitCode, 0) << result.Err;
  EXPECT_THAT(Folder.Files(), ElementsAre("out/a\"b.tga", "out/water.vtf\" -o \"pwned.tga", "tree/a\"b.vtf",
                                          "tree/water.vtf\" -o \"pwned.vtf"));
}

TEST_F(FileNames, EveryCharacterReachesTheTextureTool) {
  std::vector<std::string> images;
  for (const std::string& name : AllCharacters()) {
    Texture("in/" + name + ".vtf");
    for (const char* ending : {".tga", ".png"}) images.push_back(name + ending);
  }
  for (const char* format : {"tga", "png"}) {
    const auto result = RunCommand({"vtf", "-q", "-f", format, "-o", Folder.Path("out"), Folder.Path("in")});
    EXPECT_EQ(result.ExitCode, 0) << result.Err;
  }
  std::vector<std::string> made;
  for (const auto& entry : fs::directory_iterator(Folder.Path("out"))) made.push_back(entry.path().filename());
  EXPECT_THAT(made, UnorderedElementsAreArray(images));
  const auto info = RunCommand({"vtf", "info", "--json", Folder.Path("in/" + AllCharacters()[2] + ".vtf")});
  EXPECT_EQ(info.ExitCode, 0) << info.Err;
}

TEST_F(FileNames, EveryCharacterReachesTheCompilerAndTheViewer) {
  const std::string sdk = Folder.Path("sdk");
  const std::string seen = Folder.Path("seen");
  const std::string print = "printf '[%s]\\n' \"$@\" > '" + seen + ".new'\nmv '" + seen + ".new' '" + seen + "'\n";
  WriteShellProgram(sdk + "/studiomdl.exe", print + "mkdir -p \"$2/models\"\necho x > \"$2/models/box.mdl\"\n");
  WriteShellProgram(sdk + "/hlmv.exe", print);
  for (const std::string& name : AllCharacters()) {
    const std::string game = Folder.Path("g" + name);
    WriteText(game + "/gameinfo.txt", "");
    const std::string qc = Folder.Path(name + ".qc");
    WriteText(qc, "$modelname box.mdl\n");
    const auto result = RunCommand({"compile", "--sdk", sdk, "--game", game, qc});
    EXPECT_EQ(result.ExitCode, 0) << result.Err;
    EXPECT_EQ(ReadText(seen), "[-game]\n[" + game + "]\n[" + qc + "]\n");

    fs::remove(seen);
    EXPECT_EQ(RunCommand({"view", "--sdk", sdk, "--game", game, "box.mdl"}).ExitCode, 0);
    for (int i = 0; i < 500 && !fs::exists(seen); ++i) usleep(10'000);
    EXPECT_EQ(ReadText(seen), "[-game]\n[" + game + "]\n[" + game + "/models/box.mdl]\n");
  }
}

TEST_F(FileNames, EveryCharacterReachesTheMaterialTool) {
  fs::create_directory(Folder.Path("game"));
  std::vector<std::string> arguments{"material", "-q", "--game", Folder.Path("game"), "-d", "x"};
  for (const std::string& name : AllCharacters()) {
    arguments.push_back(Folder.Path(name + ".png"));
    WriteImage(arguments.back(), Gradient(4, 4));
  }
  const auto result = RunCommand(arguments);
  EXPECT_EQ(result.ExitCode, 0) << result.Err;
}

TEST_F(FileNames, ATextureOfATreeCannotLeadOutOfTheOutputFolder) {
  Texture("tree/in/..\\..\\pwned.vtf");
  Texture("tree/in/a.vtf");
  const auto result = RunCommand({"vtf", "-r", "-o", Folder.Path("out/deep"), Folder.Path("tree")});
  EXPECT_EQ(result.ExitCode, 1) << "it was not exported, and that is told";
  EXPECT_THAT(result.Err, HasSubstr("a name with a backslash would be taken for a path"));
  EXPECT_THAT(Folder.Files(), ElementsAre("out/deep/in/a.tga", "tree/in/..\\..\\pwned.vtf", "tree/in/a.vtf"));
}

TEST_F(FileNames, EveryCharacterIsAModelsName) {
  std::vector<std::string> folders;
  for (const std::string& name : AllCharacters()) {
    ModelBuilder{}.Write(Folder.Path("in"), name);
    folders.push_back(name);
  }
  const auto result = RunCommand({"decompile", "-q", "-o", Folder.Path("out"), Folder.Path("in")});
  EXPECT_EQ(result.ExitCode, 0) << result.Err;
  std::vector<std::string> made;
  for (const auto& entry : fs::directory_iterator(Folder.Path("out"))) made.push_back(entry.path().filename());
  EXPECT_THAT(made, UnorderedElementsAreArray(folders));
}

TEST_F(FileNames, EveryCharacterIsAProjectsAndASourcesName) {
  for (const std::string& name : AllCharacters()) {
    SCOPED_TRACE(name);
    const std::string project = Folder.Path(name + ".sc");
    WriteText(project, "\"Model Compiler/Model File\" \"box.mdl\"\n\"Model Compiler/Phy SMD Check\" \"1\"\n");
    const std::string smd = Folder.Path(name + ".smd");
    WriteText(smd, "version 1\nnodes\n0 root -1\nend\ntriangles\nwood\n");
    EXPECT_EQ(RunCommand({"project", "set", project, "Reference SMD", "box.smd"}).ExitCode, 0);
    EXPECT_EQ(RunCommand({"project", "get", project, "Reference SMD"}).Out, "box.smd\n");
    EXPECT_EQ(RunCommand({"project", "show", project}).ExitCode, 0);
    const auto qc = RunCommand({"qc", project});
    EXPECT_EQ(qc.Out, Folder.Path("box.qc") + "\n") << qc.Err;
    EXPECT_THAT(RunCommand({"smd", "info", "--json", smd}).Out, HasSubstr("\"bones\":1"));
    EXPECT_EQ(RunCommand({"smd", "replace", "--yes", smd, "wood", "oak"}).Out, smd + ": 1 replaced\n");
  }
}

TEST_F(FileNames, AProgramAtABlankInTheToolsPathIsNotRun) {
  WriteShellProgram(Folder.Path("my sdk/studiomdl.exe"), "echo right\n");
  WriteShellProgram(Folder.Path("my"), "echo wrong\n");
  WriteText(Folder.Path("a.qc"), "");
  const auto result =
      RunCommand({"compile", "--sdk", Folder.Path("my sdk"), "--game", Folder.Path("game"), Folder.Path("a.qc")});
  EXPECT_THAT(result.Out, HasSubstr("\nright\n"));
}

}  // namespace

}  // namespace tarnwick::tests

#else

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "command_line.h"
#include "core/folder_reader.h"
#include "core/paths.h"
#include "support/model_builder.h"
#include "support/vtf_builder.h"

namespace tarnwick::tests {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST(WindowsFileNames, MayBeLongAndOfAnyAlphabet) {
  const ScratchFolder folder;
  const std::string top = folder.Path(std::string(120, 'a'));
  const std::string deep = top + "/\u0436\u00E9 \u4E2D/" + std::string(120, 'b');
  fs::create_directories(core::NativePath(deep));
  WriteText(deep + "/\u0436a.vtf", VtfBuilder().Build());
  for (const char* ending : {".mdl", ".vvd", ".dx90.vtx", ".phy"}) {
    fs::copy_file(core::NativePath(TARNWICK_SAMPLES "/walker" + std::string(ending)),
                  core::NativePath(deep + "/\u0436walker" + ending));
  }
  const auto made = RunCommand({"decompile", "-q", "-o", deep + "/out", deep + "/\u0436walker.mdl"});
  EXPECT_EQ(made.ExitCode, 0) << made.Err;
  EXPECT_TRUE(core::FileExists(deep + "/out/ravelback.qc"));
  // Found in the folder itself, and from one whose path is short.
  for (const std::string& input : {deep, top}) {
    const std::string below = input == deep ? "" : deep.substr(top.size());
    const auto all = RunCommand({"decompile", "-q", "-r", "-o", input + "/all", input});
    EXPECT_EQ(all.ExitCode, 0) << all.Err;
    EXPECT_TRUE(core::FileExists(input + "/all" + below + "/\u0436walker/ravelback.qc")) << input;
  }
  for (const char* ending : {"tga", "png"}) {
    const auto image = RunCommand({"vtf", "-q", "-f", ending, "-o", deep, deep});
    EXPECT_EQ(image.ExitCode, 0) << image.Err;
    EXPECT_TRUE(core::FileExists(deep + "/\u0436a." + ending));
  }
  for (core::FolderReader entries(core::NativePath(deep)); entries.Next();) {
    EXPECT_FALSE(entries.Name().starts_with('.')) << "a folder for a while stays: " << entries.Name();
  }
  // Back into a model, with all that is on the way beside it.
  const auto again = RunCommand({"verify", "--keep", deep + "/kept", deep + "/\u0436walker.mdl"});
  EXPECT_EQ(again.ExitCode, 0) << again.Err << again.Out;
  core::RemoveFolder(core::NativePath(top));  // the folder's own end reaches no such paths
}

TEST(WindowsFileNames, MayLieInTheCurrentFolderOfADrive) {
  const ScratchFolder folder;
  ModelBuilder{}.Write(folder.Path(), "box");
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  const std::string drive = fs::current_path().root_name().string();
  const auto result = RunCommand({"decompile", "-q", "-o", drive + "out", drive + "box.mdl"});
  fs::current_path(before);
  EXPECT_EQ(result.ExitCode, 0) << result.Err;
  EXPECT_THAT(folder.Files(), testing::Contains("out/ravelback.qc"));
}

TEST(WindowsFileNames, OfDevicesAreRefusedWithTheReason) {
  const ScratchFolder folder;
  for (const char* name : {"con.sc", "nul", "a.sc."}) {
    const auto result = RunCommand({"project", "set", "--new", folder.Path(name), "Reference SMD", "box.smd"});
    EXPECT_EQ(result.ExitCode, 1) << name;
    EXPECT_THAT(result.Err, HasSubstr(name));
    EXPECT_THAT(result.Err, HasSubstr("its name ")) << name;
  }
  EXPECT_TRUE(folder.Files().empty());
}

}  // namespace

}  // namespace tarnwick::tests

#endif
