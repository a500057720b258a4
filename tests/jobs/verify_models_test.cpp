#include "jobs/verify_models.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "core/paths.h"
#include "jobs/own_compiler.h"
#include "support/model_builder.h"
#include "support/recording_host.h"
#include "support/scratch_folder.h"
#include "support/stored_file.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::jobs;
using namespace tarnwick::tests;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

/// A model of one sequence, so that its sources have an animation too.
ModelBuilder Crate() {
  ModelBuilder model;
  model.Animations = {{}};
  model.Sequences = {{}};
  return model;
}

/// A compiler that gives `model` for every script that is there.
ModelCompiler Gives(const ModelBuilder& model) {
  return [model](const ModelCompile& compile, core::Report& report) -> std::optional<std::string> {
    if (!compile.Files.Holds(compile.Script)) {
      report.ErrorBox(core::TroubleKind::Missing, "no script", "");
      return std::nullopt;
    }
    const ScratchFolder folder;
    model.Write(folder.Path(), "made");
    for (const std::string& name : folder.Files()) {
      StoreFile(compile.Files, compile.GameDirectory + "/models/" + name,
                StoredBytes(core::DiskFiles(), folder.Path(name)));
    }
    return compile.GameDirectory + "/models/made.mdl";
  };
}

class VerifyModelsJob : public testing::Test {
 protected:
  const ItemResult& Verify(const ModelCompiler& compiler, const std::string& keep = {},
                           int64_t memory = VerifyModels().MemoryLimit) {
    m_result = jobs::Run(
        {.Inputs = {m_folder.Path("cube.mdl")}, .KeepDirectory = keep, .MemoryLimit = memory, .Compiler = compiler},
        m_host, m_stop.get_token());
    return m_result.Items.at(0);
  }

  ScratchFolder m_folder;
  RecordingHost m_host;
  std::stop_source m_stop;
  JobResult m_result;
};

TEST_F(VerifyModelsJob, TellsWhetherAModelComesBackTheSame) {
  Crate().Write(m_folder.Path());
  const ItemResult& same = Verify(Gives(Crate()));
  EXPECT_EQ(same.Judged, Verdict::Succeeded);
  EXPECT_EQ(same.Shown, "same");

  ModelBuilder near = Crate();
  near.BodyParts[0].Models[0].Meshes[0].Vertices[1].Position.x = 1.000001f;
  EXPECT_EQ(Verify(Gives(near)).Judged, Verdict::Succeeded);
  EXPECT_THAT(m_result.Items[0].Shown,
              AllOf(StartsWith("same but for rounding: vertices: position"), HasSubstr("1e-06")));

  ModelBuilder other = Crate();
  other.BodyParts[0].Models[0].Meshes[0].Vertices[1].Position.x = 2;
  const ItemResult& differs = Verify(Gives(other));
  EXPECT_EQ(differs.Judged, Verdict::Failed);
  EXPECT_THAT(differs.Shown, AllOf(StartsWith("differs: vertices: position differs by 1, in body part body"),
                                   HasSubstr("cube.smd: 1 line differs by 1")));
  EXPECT_THAT(differs.Verified->Model, SizeIs(1));
  EXPECT_THAT(m_folder.Files(), SizeIs(3)) << "nothing but the model is left";
}

TEST_F(VerifyModelsJob, TellsEachKindOfDifferenceOnceTheRealOnesFirst) {
  Verification found;
  found.Model = {{.What = "rounded", .IsRounding = true}, {.What = "derived", .Derived = "a reason"}, {.What = "real"}};
  found.Sources = {{.File = "near.smd", .Lines = 1}, {.File = "far.smd", .Lines = 2, .RealLines = 1}};
  EXPECT_THAT(found.Lines(), testing::ElementsAre(HasSubstr("real"), HasSubstr("far.smd"), HasSubstr("derived"),
                                                  HasSubstr("rounded"), HasSubstr("near.smd")));
  EXPECT_EQ(found.RealCount(), 2u);
  EXPECT_THAT(found.Line(), AllOf(StartsWith("differs: "), HasSubstr("far.smd"), Not(HasSubstr("derived"))));
  found.Model.pop_back();
  found.Sources.pop_back();
  EXPECT_THAT(found.Line(), StartsWith("same but for what no source holds: "));
  found.Model.pop_back();
  EXPECT_THAT(found.Line(), StartsWith("same but for rounding: "));
  found.Model.assign(5, {.What = "real"});
  EXPECT_THAT(found.Line(), testing::EndsWith("; and 2 more"));
}

#ifndef _WIN32
TEST_F(VerifyModelsJob, WhatMemoryHasNoRoomForLiesInATemporaryFolderThatGoesAwayAndTellsTheSame) {
  ModelBuilder crate = Crate();
  crate.BodyParts[0].Models[0].Meshes[0].Vertices[1].Position.x = 1 / 3.0f;
  crate.Write(m_folder.Path());
  const char* before = std::getenv("TMPDIR");
  const std::string usual = before == nullptr ? "/tmp" : before;
  setenv("TMPDIR", m_folder.Path("temporary").c_str(), 1);
  const Verification inMemory = Verify(CompileUnchanged).Verified.value_or(Verification());
  EXPECT_FALSE(inMemory.IsSame());
  EXPECT_EQ(Verify(CompileUnchanged, {}, 0).Judged, Verdict::Failed);
  EXPECT_THAT(m_result.Items[0].First(core::Severity::Error)->Text, HasSubstr("No such file or directory"));
  std::filesystem::create_directory(m_folder.Path("temporary"));
  for (const int64_t limit : {0, 300, 700, 2000}) {
    EXPECT_EQ(Verify(CompileUnchanged, {}, limit).Verified, inMemory) << limit;
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path("temporary"))) << limit;
  }
  EXPECT_EQ(Verify(CompileUnchanged, m_folder.Path("kept")).Verified, inMemory);
  setenv("TMPDIR", usual.c_str(), 1);
}
#endif

TEST_F(VerifyModelsJob, KeepsEachStepWhereItIsAsked) {
  Crate().Write(m_folder.Path());
  EXPECT_EQ(Verify(Gives(Crate()), m_folder.Path("kept")).Target, m_folder.Path("kept") + core::PathSeparator + "cube");
  for (const char* name : {"sources/ravelback.qc", "compiled/models/made.mdl", "again/ravelback.qc"}) {
    EXPECT_TRUE(core::FileExists(m_folder.Path(std::string("kept/cube/") + name))) << name;
  }
}

TEST_F(VerifyModelsJob, KeepsEachModelInAFolderOfItsOwnOrSaysWhyNot) {
  const std::string first = Crate().Write(m_folder.Path("in"));
  const std::string second = Crate().Write(m_folder.Path("other"), "CUBE");
  std::filesystem::create_directory(m_folder.Path("empty"));
  VerifyModels job{.Inputs = {first, second, m_folder.Path("empty")},
                   .KeepDirectory = m_folder.Path("kept"),
                   .Compiler = Gives(Crate())};
  const JobResult both = jobs::Run(job, m_host, {});
  EXPECT_EQ(both.Count(Verdict::Succeeded), 2u);
  EXPECT_FALSE(both.Succeeded()) << "a folder without a model is told";
  ASSERT_THAT(both.Troubles, SizeIs(1));
  EXPECT_EQ(both.Troubles[0].Text,
            m_folder.Path("empty") + ": the folder holds no .mdl file (those below it were not looked into)");
  for (const char* name : {"cube", "CUBE_2"}) {
    EXPECT_TRUE(core::FileExists(m_folder.Path(std::string("kept/") + name + "/again/ravelback.qc"))) << name;
  }
  job.Recursive = true;
  EXPECT_EQ(Plan(job).Troubles.at(0).Text, m_folder.Path("empty") + ": the folder holds no .mdl file");

  WriteText(m_folder.Path("taken"), "a file");
  job.KeepDirectory = m_folder.Path("taken");
  const JobResult none = jobs::Run(job, m_host, {});
  EXPECT_EQ(none.Count(Verdict::Failed), 2u);
  EXPECT_THAT(none.Items[0].First(core::Severity::Error)->Text,
              AllOf(StartsWith("The folder "), HasSubstr("cannot be made: ")));
  EXPECT_EQ(ReadText(m_folder.Path("taken")), "a file");
}

TEST_F(VerifyModelsJob, TellsEachStep) {
  Crate().Write(m_folder.Path());
  Verify(Gives(Crate()));
  std::vector<std::pair<std::string, size_t>> steps;
  for (const Progress& progress : m_host.All<Progress>()) {
    if (progress.Begun != 0 && (steps.empty() || steps.back().first != progress.File)) {
      steps.push_back({progress.File, progress.Done});
    }
  }
  EXPECT_THAT(steps, testing::IsSupersetOf(
                         {std::pair<std::string, size_t>{"compiling", 1}, {"decompiling again", 2}, {"comparing", 3}}));
}

TEST_F(VerifyModelsJob, OurOwnCompilerKeepsTheVersionAndEveryNormal) {
  for (const auto& [version, written] : {std::pair{46, 44}, {48, 48}, {49, 49}}) {
    ModelBuilder crate = Crate();
    crate.Version = version;
    // Two normals at one place, a degree apart: as a rule they become one.
    MeshDescription& mesh = crate.BodyParts[0].Models[0].Meshes[0];
    const VertexDescription first = mesh.Vertices[0];
    mesh.Vertices.insert(mesh.Vertices.end(), {first, mesh.Vertices[2], {.Position = {-1, 0, 0}}});
    mesh.Vertices[3].Normal = {0, 0.017452f, 0.999848f};
    mesh.Vertices[5].Normal = {0, 0, 0.5f};
    mesh.Lods = {Triangles({0, 1, 2, 3, 4, 5})};
    crate.Write(m_folder.Path());
    int32_t made = 0, vertices = 0;
    Verify([&](const ModelCompile& compile, core::Report& report) {
      const auto path = CompileUnchanged(compile, report);
      if (path) {
        EXPECT_THAT(*path, StartsWith(compile.GameDirectory)) << "no game is touched";
        const std::string stem = path->substr(0, path->size() - 4);
        std::memcpy(&made, StoredBytes(compile.Files, *path).substr(4).data(), 4);
        std::memcpy(&vertices, StoredBytes(compile.Files, stem + ".vvd").substr(16).data(), 4);
      }
      return path;
    });
    EXPECT_EQ(made, written) << version;
    EXPECT_EQ(vertices, 5) << "the one that stood there twice once";
    ASSERT_TRUE(m_result.Items.at(0).Verified);
    EXPECT_THAT(m_result.Items[0].Verified->Lines(), Not(testing::Contains(HasSubstr("normal"))))
        << "one that is not of length 1 too";
  }
}

TEST_F(VerifyModelsJob, NamesTheStepThatFailedAndWhy) {
  WriteText(m_folder.Path("cube.mdl"), "");
  EXPECT_EQ(Verify(Gives(Crate())).Judged, Verdict::Failed);
  const core::Trouble& empty = *m_result.Items[0].First(core::Severity::Error);
  EXPECT_EQ(empty.Text, "decompiling: Unable to load model");
  EXPECT_EQ(empty.Details, m_folder.Path("cube.mdl") + ": it is empty");

  Crate().Write(m_folder.Path());
  const auto refuses = [](const ModelCompile&, core::Report& report) -> std::optional<std::string> {
    report.Tell({.Text = "ravelback.qc:3: error: no such mesh", .Alike = "error: no such mesh"});
    return std::nullopt;
  };
  EXPECT_EQ(Verify(refuses).First(core::Severity::Error)->Text, "compiling: ravelback.qc:3: error: no such mesh");
  EXPECT_EQ(m_result.Items[0].First(core::Severity::Error)->SharedText(), "compiling: error: no such mesh");
  EXPECT_FALSE(m_result.Items[0].Verified);

  const auto silent = [](const ModelCompile&, core::Report&) -> std::optional<std::string> { return std::nullopt; };
  EXPECT_EQ(Verify(silent).Judged, Verdict::Failed);
}

TEST_F(VerifyModelsJob, EndsWhenItIsStopped) {
  Crate().Write(m_folder.Path());
  const auto own = [this](const ModelCompile& compile, core::Report& report) {
    m_stop.request_stop();
    return CompileUnchanged(compile, report);
  };
  EXPECT_EQ(Verify(own, m_folder.Path("kept")).Judged, Verdict::Stopped);
  EXPECT_THAT(m_folder.Files(), Not(testing::Contains(StartsWith("kept/cube/compiled/models/")))) << "within a compile";
  EXPECT_THAT(m_host.All<Told>(), SizeIs(1)) << "once";
  m_stop = {};

  m_host.OnEvent = [this](const Event& event) { std::holds_alternative<ItemStarted>(event) && m_stop.request_stop(); };
  const auto never = [](const ModelCompile&, core::Report&) -> std::optional<std::string> {
    ADD_FAILURE() << "nothing is compiled any more";
    return std::nullopt;
  };
  EXPECT_EQ(Verify(never, m_folder.Path("early")).Judged, Verdict::Stopped);
  EXPECT_FALSE(core::FileExists(m_folder.Path("early/cube/sources/ravelback.qc"))) << "within a decompile";
  m_host.OnEvent = {};
  m_stop = {};

  const auto stops = [this](const ModelCompile& compile, core::Report& report) {
    m_stop.request_stop();
    return Gives(Crate())(compile, report);
  };
  EXPECT_EQ(Verify(stops).Judged, Verdict::Stopped);
  EXPECT_FALSE(m_result.Items[0].Verified);
}

}  // namespace
