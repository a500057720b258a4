#include "decompiler/decompile_job.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <thread>

#ifdef _WIN32
#include <share.h>

#include <cstdio>
#endif

#include "decompiled_model.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using core::BoxIcon;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

ModelBuilder WithoutBody() {
  ModelBuilder model;
  model.BodyParts.clear();
  return model;
}

/// A job from the folder "in" to the folder "out" of a scratch folder, whose files a test arranges as it wants.
struct LooseJob {
  LooseJob() { std::filesystem::create_directory(Job.OutputDirectory = Folder.Path("out")); }
  DecompileResult Run() { return DecompileModel(Job, Report); }

  ScratchFolder Folder;
  DecompileJob Job;
  RecordingReport Report;
};

#ifdef _WIN32
/// A file that another program has opened for itself alone.
class HeldFile {
 public:
  explicit HeldFile(const std::string& path) : m_file(_fsopen(path.c_str(), "w", _SH_DENYRW)) {}
  ~HeldFile() { std::fclose(m_file); }
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

 private:
  std::FILE* m_file;
};
#endif

TEST(DecompileJob, WritesTheHeadOfTheScriptAndTellsItsSteps) {
  const DecompiledModel job(ModelBuilder{.Name = "props\\cube.mdl"});
  EXPECT_EQ(job.File("ravelback.qc").substr(0, job.File("ravelback.qc").find("$model ")),
            "$cd \"" + job.Out("").substr(0, job.Out("").size() - 1) + "\"\n$modelname \"props\\cube.mdl\"\n");
  EXPECT_EQ(job.Report.LogText, "Loaded model " + job.In("cube.mdl") + "\r\nLoaded Vertices " +
                                    job.In("cube.dx90.vtx") + "\r\nCreating " + job.Out("ravelback.qc") +
                                    "\r\nCreating " + job.Out("cube.smd") + "\r\n\r\nCompleted Dumping Model!\r\n");
  EXPECT_THAT(job.Report.Boxes, IsEmpty());
  EXPECT_TRUE(job.Result.Succeeded());
  ASSERT_EQ(job.Result.Files.size(), 2u);
  for (const WrittenFile& file : job.Result.Files) EXPECT_EQ(file.Size, std::filesystem::file_size(file.Path));
}

TEST(DecompileJob, NeedsNoCompanionsForAModelWithoutBodyParts) {
  const DecompiledModel job(WithoutBody());
  EXPECT_EQ(job.MeshCommands(), "");
  EXPECT_THAT(job.Files(), ElementsAre("ravelback.qc"));
  EXPECT_THAT(job.Report.LogText, testing::EndsWith("\r\nCompleted Dumping Model!\r\n"));
}

TEST(DecompileJob, EndsWithABoxWhereAFileCannotBeHad) {
  LooseJob missing;
  missing.Job.ModelPath = missing.Folder.Path("none.mdl");
  EXPECT_FALSE(missing.Run().Completed);
  EXPECT_THAT(missing.Report.Boxes, ElementsAre(RecordedBox{BoxIcon::Stop, "Unable to load model", "Error"}));

  LooseJob unnamed;
  unnamed.Job.ModelPath.clear();
  EXPECT_FALSE(unnamed.Run().Completed);
  EXPECT_THAT(unnamed.Report.LogText, HasSubstr("No model is named\r\n"));

  LooseJob shortFile;
  WriteText(shortFile.Job.ModelPath = shortFile.Folder.Path("a.mdl"), "IDST");
  shortFile.Run();
  EXPECT_THAT(shortFile.Report.Boxes, ElementsAre(RecordedBox{BoxIcon::Stop, "Unable to load model", "Error"}));

  LooseJob noVertices;
  WriteText(noVertices.Job.ModelPath = noVertices.Folder.Path("a.mdl"), ModelBuilder().Build().Mdl.Bytes());
  noVertices.Run();
  EXPECT_THAT(noVertices.Report.Boxes,
              ElementsAre(RecordedBox{BoxIcon::Stop, "Unable to load vertices file: " + noVertices.Folder.Path("a.vtx"),
                                      "Error"}));
  EXPECT_THAT(noVertices.Report.LogText,
              HasSubstr("a.dx80.vtx, a.vtx, a.dx90.vtx, a.sw.vtx in " + noVertices.Folder.Path("")));

  LooseJob unreadable;
  unreadable.Job.ModelPath = ModelBuilder().Write(unreadable.Folder.Path(), "a");
  const std::string noFile = unreadable.Folder.Path("a.dx80.vtx");
#ifdef _WIN32
  const HeldFile held(noFile);
#else
  std::filesystem::create_symlink("/dev/null", noFile);
#endif
  unreadable.Run();
  EXPECT_THAT(unreadable.Report.Boxes,
              ElementsAre(RecordedBox{BoxIcon::Stop, "Unable to load vertices file: " + noFile, "Error"}));

  LooseJob noFolder;
  noFolder.Job.ModelPath = ModelBuilder().Write(noFolder.Folder.Path(), "a");
  noFolder.Job.OutputDirectory = noFolder.Folder.Path("none");
  noFolder.Run();
  EXPECT_THAT(noFolder.Report.Boxes, ElementsAre(RecordedBox{BoxIcon::Stop,
                                                             "Unable to open qc file\"" + noFolder.Job.OutputDirectory +
                                                                 core::PathSeparator + "ravelback.qc\"",
                                                             "File Error"}));
  EXPECT_THAT(noFolder.Report.LogText, Not(HasSubstr("Completed")));
  EXPECT_THAT(missing.Folder.Files(), IsEmpty());
}

TEST(DecompileJob, TakesTheFirstOfTheNamesThatAVertexIndexFileMayHave) {
  const std::vector<std::string> extensions = {".dx80.vtx", ".vtx", ".dx90.vtx", ".sw.vtx"};
  for (size_t first = 0; first < extensions.size(); ++first) {
    LooseJob job;
    const ModelFiles files = ModelBuilder().Build();
    // The four characters at the path's end are dropped, whatever they are.
    WriteText(job.Job.ModelPath = job.Folder.Path("a.bak"), files.Mdl.Bytes());
    WriteText(job.Folder.Path("a.vvd"), files.Vvd.Bytes());
    for (size_t i = first; i < extensions.size(); ++i)
      WriteText(job.Folder.Path("a" + extensions[i]), files.Vtx.Bytes());
    EXPECT_TRUE(job.Run().Succeeded());
    EXPECT_THAT(job.Report.LogText, HasSubstr("Loaded Vertices " + job.Folder.Path("a" + extensions[first]) + "\r\n"));
  }
}

TEST(DecompileJob, FindsCompanionsWhoseNamesDifferInCaseIfThereIsJustOne) {
  LooseJob job;
  const ModelFiles files = ModelBuilder().Build();
  WriteText(job.Job.ModelPath = job.Folder.Path("Hair.mdl"), files.Mdl.Bytes());
  WriteText(job.Folder.Path("hair.DX90.vtx"), files.Vtx.Bytes());
  WriteText(job.Folder.Path("HAIR.vvd"), files.Vvd.Bytes());
  EXPECT_TRUE(job.Run().Succeeded()) << job.Report.LogText;
#ifndef _WIN32  // there the system itself finds them, and no second file can have such a name
  EXPECT_THAT(job.Report.LogText, HasSubstr(job.Folder.Path("hair.DX90.vtx")));
  EXPECT_THAT(job.Report.LogText, HasSubstr("Using " + job.Folder.Path("HAIR.vvd") + " for Hair.vvd\r\n"));

  WriteText(job.Folder.Path("hair.vvd"), files.Vvd.Bytes());
  EXPECT_FALSE(job.Run().Succeeded());
#endif
}

/// The disk, of which nothing may be read whole.
class HeadsOnly : public core::FileSource {
 public:
  std::optional<core::FileImage> Read(const std::string& name, std::string*) const override {
    ADD_FAILURE() << name << " is read whole";
    return std::nullopt;
  }
  bool ReadStart(const std::string& name, std::span<std::byte> out) const override {
    return core::DiskFiles().ReadStart(name, out);
  }
  bool Holds(const std::string& name) const override { return core::DiskFiles().Holds(name); }
  std::optional<std::string> FindBeside(const std::string& name) const override {
    return core::DiskFiles().FindBeside(name);
  }
  std::optional<std::string> FindElsewhere(const std::string&) const override { return std::nullopt; }
};

TEST(DecompileJob, KnowsByItsHeadWhatIsNoModel) {
  LooseJob job;
  WriteText(job.Job.ModelPath = job.Folder.Path("film.mdl"), std::string(4096, 'x'));
  const HeadsOnly heads;
  job.Job.Files = &heads;
  EXPECT_THAT(TextsOf(job.Run(), core::Severity::Error), ElementsAre(HasSubstr("is no compiled model")));
}

TEST(DecompileJob, TellsWhatIsNoModelOrNoneThatItKnows) {
  for (const uint32_t options : {0u, DecompileOptionReadyToCompile}) {
    const auto run = [options](int32_t version, char letter) {
      ModelFiles files = ModelBuilder().Build();
      files.Mdl.Record<StudioHeader>("header").Version = version;
      files.Mdl.Record<StudioHeader>("header").Id[0] = letter;
      return DecompiledModel(files, options).Result;
    };
    EXPECT_THAT(TextsOf(run(10, 'I'), core::Severity::Warning),
                ElementsAre(HasSubstr("version 10; versions 44 to 49")));
    EXPECT_THAT(TextsOf(run(50, 'I'), core::Severity::Warning), ElementsAre(HasSubstr("version 50")));
    EXPECT_THAT(TextsOf(run(44, 'I'), core::Severity::Warning), IsEmpty());
    EXPECT_THAT(TextsOf(run(10, 'X'), core::Severity::Error), ElementsAre(HasSubstr("is no compiled model")));
  }
  LooseJob empty;
  WriteText(empty.Job.ModelPath = empty.Folder.Path("a.mdl"), "");
  EXPECT_FALSE(empty.Run().Completed);
  EXPECT_THAT(empty.Report.LogText, HasSubstr("a.mdl: it is empty\r\n"));
}

TEST(DecompileJob, WarnsOfFilesThatDoNotBelongTogether) {
  ModelFiles files = ModelBuilder().Build();
  files.Mdl.Record<StudioHeader>("header").Id[0] = 'X';
  files.Vtx.Record<VtxHeader>("header").Checksum = 1;
  files.Vvd.Record<VvdHeader>("header").Checksum = 2;
  const DecompiledModel job(files, DecompileOptionReadyToCompile);
  EXPECT_TRUE(job.Result.Succeeded());
  EXPECT_THAT(TextsOf(DecompiledModel(files).Result, core::Severity::Warning), IsEmpty());
  EXPECT_THAT(
      TextsOf(job.Result, core::Severity::Warning),
      ElementsAre(HasSubstr("cube.mdl does not begin with IDST"), HasSubstr("cube.dx90.vtx was not made together with"),
                  HasSubstr("cube.vvd was not made together with")));
}

TEST(DecompileJob, KeepsJobsThatRunSideBySideApart) {
  const auto model = [](const std::string& name) {
    ModelBuilder builder{.Name = name + ".mdl"};
    builder.BodyParts[0].Models.clear();
    for (int i = 0; i < 30; ++i) builder.BodyParts[0].Models.push_back({.Name = name + std::to_string(i) + ".smd"});
    return builder;
  };
  std::vector<std::thread> threads;
  for (const std::string name : {"first", "second"}) {
    threads.emplace_back([&model, name] {
      for (int round = 0; round < 5; ++round) {
        const DecompiledModel job(model(name), DecompileOptionReadyToCompile);
        EXPECT_TRUE(job.Result.Succeeded());
        EXPECT_EQ(job.Files().size(), 31u);
        for (const std::string& file : job.Files()) EXPECT_TRUE(file == "ravelback.qc" || file.starts_with(name));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(DecompileJob, LeavesTheLastOfFilesOfOneNameInThePlainForm) {
  MeshDescription large{.Lods = {Triangles({})}, .Flexes = {{}}};
  for (int i = 0; i < 20'000; ++i) large.Lods[0][0][0].Vertices.insert(large.Lods[0][0][0].Vertices.end(), {0, 1, 2});
  ModelBuilder model{.FlexDescs = {"lid"}, .Mouths = {{}}};
  model.BodyParts = {{.Models = {{.Name = "", .Meshes = {large, large}}, {.Name = ""}}}};
  core::WorkQueue helpers(2);
  LooseJob job;
  job.Job.ModelPath = model.Write(job.Folder.Path("in"));
  job.Job.Helpers = &helpers;
  const DecompileResult result = job.Run();
  EXPECT_EQ(result.Files.size(), 3u);
  for (const WrittenFile& file : result.Files) {
    EXPECT_LT(file.Size, 1000u) << file.Path;
    EXPECT_EQ(file.Size, std::filesystem::file_size(file.Path)) << file.Path;
  }
}

TEST(DecompileJob, LeavesNoTaskBehindWhereNobodyHelps) {
  core::WorkQueue helpers;
  LooseJob job;
  job.Job.ModelPath = ModelBuilder{.BodyParts = {{}, {}, {}}}.Write(job.Folder.Path("in"));
  job.Job.Helpers = &helpers;
  EXPECT_GT(job.Run().Files.size(), 1u);
  EXPECT_FALSE(helpers.RunOne());
}

TEST(DecompileJob, LeavesNothingHalfDoneWhenItIsStopped) {
  LooseJob job;
  job.Job.ModelPath = ModelBuilder{.BodyParts = {{}, {}, {}}}.Write(job.Folder.Path("in"));
  job.Job.Options = DecompileOptionReadyToCompile;
  std::atomic<bool> stop = false;
  job.Job.StopRequested = &stop;
  job.Job.Progress = [&](const DecompileProgress& progress) { stop = stop || progress.File == "cube.smd"; };
  EXPECT_FALSE(job.Run().Completed);
  for (const std::string& file : job.Folder.Files()) {
    EXPECT_TRUE(file.starts_with("in/") || file == "out/cube.smd") << file;
  }
}

}  // namespace
}  // namespace tarnwick::decompiler
