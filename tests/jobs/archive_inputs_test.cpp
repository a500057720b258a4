#include <gmock/gmock.h>
#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

#include <filesystem>

#include "jobs/decompile_tree.h"
#include "jobs/unpacked_model.h"
#include "jobs/verify_models.h"
#include "support/archive_builder.h"
#include "support/model_builder.h"
#include "support/recording_host.h"
#include "support/scratch_folder.h"
#include "support/stored_file.h"
#ifdef TARNWICK_HAS_IMAGES
#include "jobs/export_textures.h"
#include "support/shell_programs.h"
#include "support/vtf_builder.h"
#endif

namespace tarnwick::jobs {
namespace {

using core::Severity;
using core::TroubleKind;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using tests::GmaBuilder;
using tests::ModelBuilder;
using tests::PackedFile;
using tests::RecordingHost;
using tests::ScratchFolder;
using tests::StoreFile;
using tests::VpkBuilder;
using tests::WriteText;

#ifndef _WIN32
/// Lets no file of this process grow beyond `bytes`, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit lower{bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &lower);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_signal);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit m_before{};
  void (*m_signal)(int);
};
#endif

/// Archives with models, and a game that has some of their files too.
class ArchiveInputsTest : public testing::Test {
 protected:
  /// The files of a model as an archive has them below `folder`.
  std::vector<PackedFile> ModelIn(const std::string& folder, const std::string& stem,
                                  const ModelBuilder& builder = {}) {
    const ScratchFolder loose;
    builder.Write(loose.Path(), stem);
    return tests::PackedFolder(loose, folder);
  }
  std::string WriteVpk(const std::string& name, VpkBuilder vpk) {
    vpk.Build();
    WriteText(m_folder.Path(name), vpk.Directory);
    const std::string stem = name.substr(0, name.size() - std::string("_dir.vpk").size());
    for (const auto& [part, bytes] : vpk.Parts) {
      WriteText(m_folder.Path(stem + "_00" + std::to_string(part) + ".vpk"), bytes);
    }
    return m_folder.Path(name);
  }
  std::shared_ptr<InputContent> Game(std::vector<PackedFile> files) {
    WriteText(m_folder.Path("mod/gameinfo.txt"), "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. } } }");
    WriteVpk("mod/pak01_dir.vpk", {.Files = std::move(files)});
    return std::make_shared<InputContent>(m_folder.Path("mod"));
  }
  JobResult Decompile(DecompileTree job) {
    job.OutputDirectory = m_output.Path();
    return jobs::Run(job, m_host, {});
  }

  ScratchFolder m_folder;
  ScratchFolder m_output;
  RecordingHost m_host;
};

TEST_F(ArchiveInputsTest, SourcesOutOfEveryKindOfArchiveAreThoseOfTheLooseModel) {
  const std::vector<PackedFile> files =
      ModelIn("models/props", "crate", ModelBuilder{.Animations = {{.Name = "idle"}}});
  ScratchFolder loose;
  for (const PackedFile& file : files) WriteText(loose.Path(file.Name), file.Bytes);
  ScratchFolder expected;
  ASSERT_TRUE(
      jobs::Run(DecompileTree{.Inputs = {loose.Path("models/props/crate.mdl")}, .OutputDirectory = expected.Path()},
                m_host, {})
          .Succeeded());
  ASSERT_THAT(expected.Files(), Contains("ravelback.qc"));
  std::vector<PackedFile> split = files;
  for (size_t i = 0; i < split.size(); ++i) {
    split[i].Part = static_cast<uint16_t>(i % 2);
    split[i].Preload = 10 * i;  // an odd place for whatever is read from the start
  }
  WriteText(m_folder.Path("addon.gma"), GmaBuilder{.Files = files}.Build());
  const std::string inputs[] = {WriteVpk("one_dir.vpk", {.Version = 1, .Files = files}),
                                WriteVpk("two_dir.vpk", {.Version = 2, .Files = files}),
                                WriteVpk("split_dir.vpk", {.Version = 2, .Files = split}), m_folder.Path("addon.gma")};
  for (const std::string& archive : inputs) {
    SCOPED_TRACE(archive);
    const JobResult result = Decompile({.Inputs = {archive + ":Models\\props/CRATE.mdl"}});
    EXPECT_TRUE(result.Succeeded());
    EXPECT_EQ(m_output.Files(), expected.Files());
    for (const std::string& name : expected.Files()) {
      EXPECT_EQ(tests::ReadText(m_output.Path(name)), tests::ReadText(expected.Path(name))) << name;
    }
    EXPECT_THAT(m_host.Text(LineSource::Log), HasSubstr("Loaded model " + archive + ":models/props/crate.mdl\r\n"));
  }
  const JobResult game = Decompile({.Inputs = {"game:models/props/crate.mdl"}, .Content = Game(files)});
  EXPECT_TRUE(game.Succeeded());
  EXPECT_EQ(game.Items[0].Input, "game:models/props/crate.mdl");
}

TEST_F(ArchiveInputsTest, FoldersAndPatternsKeepTheirTreeAndNothingLeadsOut) {
  std::vector<PackedFile> files;
  for (const char* folder : {"models", "models/a", "models/a/deep"}) {
    for (PackedFile& file : ModelIn(folder, "cube")) files.push_back(std::move(file));
  }
  for (const char* name :
       {"models/../../out.mdl", "models/c:evil.mdl", "models/bell\a.mdl", "models/...mdl", "models/A/CUBE.mdl"}) {
    files.push_back({.Name = name, .Bytes = "x"});
  }
  const std::string gma = m_folder.Path("addon.gma");
  WriteText(gma, GmaBuilder{.Files = files}.Build());
  const JobPlan whole = Plan(DecompileTree{.Inputs = {gma}, .OutputDirectory = "out", .Recursive = true});
  std::vector<std::string> targets;
  for (const PlannedItem& item : whole.Items) targets.push_back(std::filesystem::path(item.Target).generic_string());
  EXPECT_THAT(targets, testing::UnorderedElementsAre("out/models/a/cube", "out/models/a/deep/cube", "out/models/cube"))
      << "the later of two names that differ in case is not there";
  EXPECT_THAT(whole.Troubles, AllOf(testing::SizeIs(4), Each(Field(&core::Trouble::Kind, TroubleKind::Refused))));
  EXPECT_THAT(whole.Troubles, Contains(Field(&core::Trouble::Text, HasSubstr("bell\\x07.mdl: "))));

  EXPECT_EQ(Plan(DecompileTree{.Inputs = {gma + ":models/a"}}).Items.size(), 1u);
  EXPECT_EQ(Plan(DecompileTree{.Inputs = {gma + ":models/*/*be.mdl"}}).Items.size(), 1u);
  const JobResult tree = Decompile({.Inputs = {gma + ":models/a"}, .Recursive = true, .Threads = 2});
  EXPECT_TRUE(tree.Succeeded());
  EXPECT_THAT(m_output.Files(),
              ElementsAre("cube/cube.smd", "cube/ravelback.qc", "deep/cube/cube.smd", "deep/cube/ravelback.qc"));
}

#ifndef _WIN32  // which knows no such names
TEST_F(ArchiveInputsTest, ARealFileOfSuchANameWins) {
  const std::string vpk = WriteVpk("x_dir.vpk", {.Files = ModelIn("models", "crate")});
  std::filesystem::create_directories(m_folder.Path("x_dir.vpk:models"));
  const std::string model = ModelBuilder{}.Write(m_folder.Path("x_dir.vpk:models"), "crate");
  const JobResult result = Decompile({.Inputs = {vpk + ":models/crate.mdl"}});
  EXPECT_TRUE(result.Succeeded());
  WriteText(m_folder.Path("x_dir.vpk:models/crate.vvd"), "broken");
  EXPECT_FALSE(Decompile({.Inputs = {model}}).Succeeded()) << "the archive's is not taken for it";
}
#endif

TEST_F(ArchiveInputsTest, CompanionsComeFromTheSameArchiveThenThroughTheSearchPaths) {
  std::vector<PackedFile> files = ModelIn("models", "crate");
  std::vector<PackedFile> game = files;
  for (PackedFile& file : game) {
    if (file.Name.ends_with(".vvd")) file.Bytes = "of the game, and broken";
  }
  const auto content = Game(game);
  EXPECT_TRUE(Decompile({.Inputs = {WriteVpk("own_dir.vpk", {.Files = files})}, .Content = content, .Recursive = true})
                  .Succeeded());
  std::erase_if(files, [](const PackedFile& file) { return file.Name.ends_with(".vvd"); });
  const std::string lacking = WriteVpk("lacking_dir.vpk", {.Files = files}) + ":models/crate.mdl";
  const JobResult broken = Decompile({.Inputs = {lacking}, .Content = content});
  ASSERT_NE(broken.Items[0].First(Severity::Error), nullptr);
  EXPECT_THAT(broken.Items[0].First(Severity::Error)->File, EndsWith("pak01_dir.vpk:models/crate.vvd"));
  const JobResult none = Decompile({.Inputs = {lacking}});
  ASSERT_NE(none.Items[0].First(Severity::Error), nullptr);
  EXPECT_THAT(none.Items[0].First(Severity::Error)->Text, HasSubstr("lacking_dir.vpk:models/crate.vvd"));

  // A .vtx file of the game must not come before the one of another kind in the archive.
  for (PackedFile& file : game) {
    if (file.Name.ends_with(".dx90.vtx")) file = {.Name = "models/crate.dx80.vtx", .Bytes = "of another model"};
  }
  WriteVpk("mod/pak01_dir.vpk", {.Files = game});
  EXPECT_TRUE(Decompile({.Inputs = {m_folder.Path("own_dir.vpk:models/crate.mdl")},
                         .Content = std::make_shared<InputContent>(m_folder.Path("mod")),
                         .Options = 0})
                  .Succeeded());
}

TEST_F(ArchiveInputsTest, DamageNamesTheArchiveAndTheFile) {
  std::vector<PackedFile> files = ModelIn("models", "crate");
  for (PackedFile& file : files) file.WrongCrc = true;
  const std::string vpk = WriteVpk("bad_dir.vpk", {.Files = files});
  const JobResult result =
      Decompile({.Inputs = {vpk + ":models/crate.mdl", vpk + ":models/none.mdl", vpk + ":none",
                            m_folder.Path("no.vpk:a.mdl"), m_folder.Path("no.vpk:a"), "game:x.mdl"}});
  ASSERT_EQ(result.Items.size(), 4u);
  EXPECT_THAT(result.Items[0].First(Severity::Error)->Details,
              AllOf(HasSubstr(vpk + ":models/crate.mdl"), HasSubstr("CRC-32")));
  EXPECT_THAT(result.Items[1].First(Severity::Error)->Details, HasSubstr("the archive has no such file"));
  EXPECT_THAT(result.Items[2].First(Severity::Error)->Details, HasSubstr("no.vpk"));
  EXPECT_THAT(result.Items[3].First(Severity::Error)->Details, HasSubstr("no game directory is known"));
  EXPECT_THAT(result.Troubles, ElementsAre(Field(&core::Trouble::Kind, TroubleKind::Missing),
                                           Field(&core::Trouble::Kind, TroubleKind::Unreadable)));
  EXPECT_THAT(m_output.Files(), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("crate")));
}

TEST_F(ArchiveInputsTest, VerifiesAndUnpacksModels) {
  ModelBuilder builder;
  builder.IncludedModels = {"models/shared/moves.mdl"};
  std::vector<PackedFile> files = ModelIn("models/props", "crate", builder);
  for (PackedFile& file : ModelIn("models/shared", "moves")) files.push_back(std::move(file));
  const std::string vpk = WriteVpk("own_dir.vpk", {.Files = files});
  std::string compared;
  const VerifyModels job{.Inputs = {vpk + ":models/props"},
                         .Compiler = [&](const ModelCompile& compile, core::Report&) -> std::optional<std::string> {
                           const std::string models = compile.GameDirectory + "/models";
                           for (const PackedFile& file : files)
                             StoreFile(compile.Files, models + "/" + file.Name, file.Bytes);
                           return models + "/models/props/crate.mdl";
                         }};
  const JobResult result = jobs::Run(job, m_host, {});
  ASSERT_EQ(result.Items.size(), 1u);
  EXPECT_EQ(result.Items[0].Shown, "same");

  std::string reason;
  const InputContent content;
  const auto path = UnpackModel(vpk + ":models/props/crate.mdl", content.Files(), m_output.Path(), reason);
  ASSERT_TRUE(path) << reason;
  EXPECT_EQ(std::filesystem::path(*path), std::filesystem::path(m_output.Path("models/props/crate.mdl")));
  EXPECT_THAT(m_output.Files(),
              ElementsAre("models/props/crate.dx90.vtx", "models/props/crate.mdl", "models/props/crate.vvd",
                          "models/shared/moves.dx90.vtx", "models/shared/moves.mdl", "models/shared/moves.vvd"));
  for (const PackedFile& file : files) EXPECT_EQ(tests::ReadText(m_output.Path(file.Name)), file.Bytes) << file.Name;
  EXPECT_FALSE(UnpackModel(vpk + ":models/none.mdl", content.Files(), m_output.Path(), reason));
  EXPECT_THAT(reason, HasSubstr("none.mdl: the archive has no such file"));
}

TEST_F(ArchiveInputsTest, AModelThatMayNotOrCannotBeUnpackedNamesTheFileAndWhy) {
  const std::string vpk =
      WriteVpk("own_dir.vpk",
               {.Files = {{.Name = "models/bell\a.mdl", .Bytes = "x"}, {.Name = "models/a.mdl", .Bytes = "12345"}}});
  const InputContent content;
  std::string reason;
  EXPECT_FALSE(UnpackModel(vpk + ":models/bell\a.mdl", content.Files(), m_output.Path(), reason));
  EXPECT_THAT(reason, StartsWith(vpk + ":models/bell\\x07.mdl: "));
  EXPECT_THAT(m_output.Files(), IsEmpty());

  WriteText(m_output.Path("taken/models"), "a file");
  EXPECT_FALSE(UnpackModel(vpk + ":models/a.mdl", content.Files(), m_output.Path("taken"), reason));
  EXPECT_THAT(reason, HasSubstr("a.mdl cannot be written: "));
#ifndef _WIN32
  const auto full = [&] {
    const FileSizeLimit limit(4);
    return UnpackModel(vpk + ":models/a.mdl", content.Files(), m_output.Path("full"), reason);
  }();
  EXPECT_FALSE(full);
  EXPECT_EQ(reason, m_output.Path("full/models/a.mdl") + " cannot be written: File too large");
  EXPECT_THAT(m_output.Files(), ElementsAre("taken/models")) << "nothing is left half written";
#endif
}

#ifdef TARNWICK_HAS_IMAGES
TEST_F(ArchiveInputsTest, ExportsTexturesWithAndWithoutTheSdksTool) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  const std::string texture = tests::VtfBuilder().Frames(2).Build();
  const std::string vpk = WriteVpk("own_dir.vpk", {.Files = {{.Name = "materials/a/brick.vtf", .Bytes = texture},
                                                             {.Name = "materials/a/none.vtf", .Bytes = "VTF"}}});
  const JobResult own = jobs::Run(
      ExportTextures{.Inputs = {vpk + ":materials"}, .Output = m_output.Path(), .Format = "png", .Recursive = true},
      m_host, {});
  ASSERT_EQ(own.Items.size(), 2u);
  EXPECT_TRUE(own.Items[0].Succeeded());
  EXPECT_THAT(own.Items[1].First(Severity::Error)->Text, HasSubstr(vpk + ":materials/a/none.vtf: "));
  EXPECT_THAT(m_output.Files(), ElementsAre("a/brick.png", "a/brick001.png"));

#ifndef _WIN32
  tests::WriteShellProgram(m_folder.Path("sdk/vtf2tga.exe"), "printf %s \"$3\" >'" + m_folder.Path("laid") +
                                                                 "'; for o; do :; done; cp \"$3\" \"$o\"; exit 0");
  const JobResult sdk = jobs::Run(ExportTextures{.Inputs = {vpk + ":materials/a/brick.vtf"},
                                                 .Output = m_output.Path("b.tga"),
                                                 .SdkDirectory = m_folder.Path("sdk")},
                                  m_host, {});
  EXPECT_TRUE(sdk.Succeeded());
  const std::filesystem::path laid = tests::ReadText(m_folder.Path("laid"));
  EXPECT_EQ(laid.filename(), "texture.vtf");
  EXPECT_EQ(tests::ReadText(m_output.Path("b.tga")), texture) << "the tool had the whole texture";
  EXPECT_FALSE(std::filesystem::exists(laid.parent_path())) << "what is laid on the disk for the tool is taken away";
#endif
  const JobPlan beside = Plan(
      ExportTextures{.Inputs = {vpk + ":materials/a/brick.vtf"}, .Place = ImagePlace::BesideInput, .Output = "x.png"});
  EXPECT_THAT(beside.Troubles, ElementsAre(Field(&core::Trouble::Kind, TroubleKind::Refused)));
}

TEST_F(ArchiveInputsTest, FindsTheMaterialsBesideAModelInAnyFolder) {
  ModelBuilder{.Textures = {"skin"}}.Write(m_folder.Path("loose"), "crate");
  WriteText(m_folder.Path("loose/Materials/models/props/SKIN.vmt"), "X { }");
  const JobResult result = Decompile({.Inputs = {m_folder.Path("loose/crate.mdl")}, .MaterialFormat = "tga"});
  EXPECT_TRUE(result.Succeeded());
  EXPECT_THAT(m_output.Files(), Contains("materials/models/props/skin.vmt"));
}

TEST_F(ArchiveInputsTest, WritesTheMaterialsOfAModel) {
  ModelBuilder builder;
  builder.Textures = {"skin", "lid", "lost", "../../evil"};
  builder.MaterialDirectories = {"models\\props\\", "models/Other/"};
  std::vector<PackedFile> files = ModelIn("models/props", "crate", builder);
  const std::string texture = tests::VtfBuilder().Build();
  files.push_back({.Name = "materials/models/props/skin.vmt",
                   .Bytes = "VertexLitGeneric { $basetexture \"Models\\Props/skin\" $bumpmap models/props/gone\n"
                            "$envmap env_cubemap $alpha 0.5 $color \"[1 1 1]\" \"$odd\" models/props/extra }"});
  files.push_back({.Name = "materials/models/props/skin.vtf", .Bytes = texture});
  files.push_back({.Name = "materials/models/props/../../evil.vmt", .Bytes = "X { }"});
  files.push_back({.Name = "materials/models/props/extra.vtf", .Bytes = texture});
  std::vector<PackedFile> game = {
      {.Name = "materials/models/other/lid.vmt",
       .Bytes = "patch { include materials/models/other/base.vmt replace { $detail models/other/dots } "
                "insert { $bumpmap models/props/gone } "},
      {.Name = "materials/models/other/base.vmt",
       .Bytes = "X { $basetexture models/props/skin \"$iris\" ../../../evil include materials/models/other/lid.vmt\n"
                "include Materials\\models/other/away.vmt $refracttexture _rt_Water $envmapmask shared/_RT_Camera }"},
      {.Name = "materials/models/other/dots.vtf", .Bytes = "no texture"}};
  const std::string vpk = WriteVpk("own_dir.vpk", {.Files = files});
  for (const char* format : {"tga", "png"}) {
    SCOPED_TRACE(format);
    const JobResult result =
        Decompile({.Inputs = {vpk + ":models/props/crate.mdl"}, .Content = Game(game), .MaterialFormat = format});
    EXPECT_TRUE(result.Succeeded()) << "what is missing is a warning";
    const std::string ending = std::string(".") + format;
    EXPECT_THAT(m_output.Files(),
                AllOf(Contains("materials/models/other/base.vmt"), Contains("materials/models/other/lid.vmt"),
                      Contains("materials/models/props/skin.vmt"), Contains("materials/models/props/skin" + ending),
                      Contains("materials/models/props/extra" + ending)));
    std::vector<std::string> told;
    for (const core::Trouble& trouble : result.Items[0].Troubles) told.push_back(trouble.Text);
    EXPECT_THAT(told, Contains(AllOf(HasSubstr("Missing material materials/models/props/lost.vmt, "
                                               "materials/models/other/lost.vmt (looked in " +
                                               vpk),
                                     HasSubstr(m_folder.Path("mod")))));
    EXPECT_THAT(told, Contains(HasSubstr("Missing texture materials/models/props/gone.vtf")).Times(1))
        << "once, though two materials name it";
    EXPECT_THAT(told, Contains(HasSubstr("models/other/lid.vmt: "))) << "its last brace is missing";
    EXPECT_THAT(told, Contains(HasSubstr("models/other/dots.vtf: ")));
    EXPECT_THAT(told, Contains(StartsWith("Missing material materials/models/other/away.vmt ")));
    EXPECT_THAT(told, testing::Not(Contains(testing::AnyOf(HasSubstr("env_cubemap"), HasSubstr("_rt_")))));
    for (const std::string& name : m_output.Files()) {
      EXPECT_THAT(name, testing::Not(HasSubstr("evil")));
      if (name.ends_with(".vmt") || name.ends_with(ending)) {
        EXPECT_THAT(result.Items[0].Files, Contains(Field(&core::WrittenFile::Path, EndsWith(name))));
      }
    }
  }
  EXPECT_FALSE(std::filesystem::exists(m_output.Path("../evil.vmt")));
  // A loose model has its materials beside its folder models, in any case.
  for (const PackedFile& file : files) {
    std::string name = file.Name;
    if (name.starts_with("materials/models")) name.replace(0, 16, "Materials/MODELS");
    WriteText(m_folder.Path("loose/" + name), file.Bytes);
  }
  ScratchFolder out;
  const JobResult loose = jobs::Run(DecompileTree{.Inputs = {m_folder.Path("loose/models/props/crate.mdl")},
                                                  .OutputDirectory = out.Path(),
                                                  .MaterialFormat = "tga"},
                                    m_host, {});
  EXPECT_THAT(out.Files(), Contains("materials/models/props/skin.vmt"));
}

TEST_F(ArchiveInputsTest, AStopWithinTheMaterialsKeepsWhatIsWhole) {
  ModelBuilder{.Textures = {"a", "b"}}.Write(m_folder.Path("models/props"), "crate");
  for (const char* name : {"a", "b"}) WriteText(m_folder.Path("materials/models/props/") + name + ".vmt", "X { }");
  std::stop_source stop;
  m_host.OnEvent = [&](const Event& event) {
    const auto* now = std::get_if<Progress>(&event);
    if (now != nullptr && now->File.ends_with("a.vmt")) stop.request_stop();
  };
  const JobResult result = jobs::Run(DecompileTree{.Inputs = {m_folder.Path("models/props/crate.mdl")},
                                                   .OutputDirectory = m_output.Path(),
                                                   .MaterialFormat = "png"},
                                     m_host, stop.get_token());
  EXPECT_EQ(result.Items.at(0).Judged, Verdict::Stopped);
  EXPECT_THAT(m_output.Files(), ElementsAre("cube.smd", "materials/models/props/a.vmt", "ravelback.qc"));
}

TEST_F(ArchiveInputsTest, AModelThatNamesEndlessMaterialsEndsAndSaysSoOnce) {
  ModelBuilder builder;
  builder.Textures.clear();
  for (int i = 0; i < 4'200; ++i) builder.Textures.push_back("t" + std::to_string(i));
  builder.Write(m_folder.Path("models/props"), "crate");
  const ItemResult result =
      Decompile({.Inputs = {m_folder.Path("models/props/crate.mdl")}, .MaterialFormat = "tga"}).Items.at(0);
  EXPECT_EQ(result.Count(Severity::Warning), 4'096u + 1) << "each that was looked for, and that no more are";
  EXPECT_THAT(m_host.Text(LineSource::Log), EndsWith("so many materials that not all are written\r\n"));
}

TEST_F(ArchiveInputsTest, MaterialsThatCannotBeWrittenAreToldOnceBesideTheWholeSources) {
  ModelBuilder{.Textures = {"skin", "lid"}}.Write(m_folder.Path("models/props"), "crate");
  for (const char* name : {"skin", "lid"}) {
    WriteText(m_folder.Path("materials/models/props/") + name + ".vmt", "X { $basetexture models/props/gone }");
  }
  WriteText(m_output.Path("materials"), "a file");
  const ItemResult result =
      Decompile({.Inputs = {m_folder.Path("models/props/crate.mdl")}, .MaterialFormat = "tga"}).Items.at(0);
  EXPECT_EQ(result.Judged, Verdict::Failed);
  ASSERT_THAT(result.Troubles, ElementsAre(Field(&core::Trouble::Kind, TroubleKind::Unwritable)))
      << "neither the second material nor what the first one names is tried";
  EXPECT_THAT(result.Troubles[0].Text, HasSubstr("props cannot be made: "));
  EXPECT_THAT(m_output.Files(), ElementsAre("cube.smd", "materials", "ravelback.qc"));
}
#endif

}  // namespace
}  // namespace tarnwick::jobs
