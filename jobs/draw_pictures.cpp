#include "jobs/draw_pictures.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <mutex>
#include <utility>

#include "core/output_file.h"
#include "core/paths.h"
#include "core/whole_path.h"
#include "jobs/input_files.h"
#include "jobs/made_folder.h"
#include "jobs/not_begun.h"
#include "textures/png_writer.h"
#include "view/materials/material_loader.h"
#include "view/renderer/offscreen.h"
#include "view/renderer/renderer.h"
#include "view/scene/make_scene.h"
#include "view/scene/view_state.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ModelExtension = ".mdl";
constexpr std::string_view PictureExtension = ".png";
constexpr std::array<float, 4> Grey{0.36f, 0.38f, 0.41f, 1};
constexpr std::array<float, 4> Nothing{0, 0, 0, 0};
constexpr float Filled = 0.94f;  // of the picture by the model, along the longer way

/// What draws, for one item at a time.
struct Drawer {
  std::unique_ptr<view::Offscreen> Context;  // goes last: the renderer needs it
  std::unique_ptr<view::Renderer> Draws;

  ~Drawer() {
    if (Context != nullptr && Context->MakeCurrent()) Draws.reset();
  }
};

/// The drawers of a job: as many as items are drawn at once.
class Drawers {
 public:
  /// One whose context is current on this thread. Null, with `reason`, where none can be had.
  std::unique_ptr<Drawer> Take(std::string& reason) {
    std::unique_ptr<Drawer> drawer;
    {
      const std::lock_guard lock(m_lock);
      if (!m_free.empty()) {
        drawer = std::move(m_free.back());
        m_free.pop_back();
      }
    }
    if (drawer != nullptr) {
      if (drawer->Context->MakeCurrent()) return drawer;
      reason = "the driver does not give its context to another thread";
      return nullptr;
    }
    drawer = std::make_unique<Drawer>();
    drawer->Context = view::Offscreen::Make(reason);
    if (drawer->Context == nullptr) return nullptr;
    drawer->Draws = view::Renderer::Make(drawer->Context->Functions(), reason);
    return drawer->Draws == nullptr ? nullptr : std::move(drawer);
  }

  void PutBack(std::unique_ptr<Drawer> drawer) {
    drawer->Context->Release();
    const std::lock_guard lock(m_lock);
    m_free.push_back(std::move(drawer));
  }

 private:
  std::mutex m_lock;
  std::vector<std::unique_ptr<Drawer>> m_free;
};

/// The largest level of a texture that a picture shows anything of.
int TextureSideFor(const DrawPictures& job) {
  int side = 64;
  while (side < std::max(job.Width, job.Height)) side *= 2;
  return side;
}

/// What the items of a job share.
struct Shared {
  explicit Shared(const DrawPictures& job)
      : Content(ContentOf(job)), Textures(size_t{256} << 20, TextureSideFor(job)) {}

  std::shared_ptr<InputContent> Content;
  view::TextureCache Textures;
  Drawers Ready;
};

/// One model on its way.
class Drawing {
 public:
  Drawing(const DrawPictures& job, Shared& shared, ItemRun& run) : m_job(job), m_shared(shared), m_run(run) {}

  void Work() {
    const std::string& path = m_run.Result.Source;
    const archives::ContentFiles& content = m_shared.Content->Files();
    if (!content.Holds(path)) {
      std::string reason = "there is no such model";
      if (!IsOnDisk(path)) (void)content.Read(path, &reason);
      return m_run.Fail(core::TroubleKind::Missing, reason, path);
    }
    // What other models hold is asked for by name alone.
    auto scene = view::MakeScene(path, m_run, content, {.IncludedModels = m_job.Sequence.has_value()});
    if (!scene || m_run.Stop.stop_requested()) {
      if (m_run.Result.First(core::Severity::Error) == nullptr) {
        const bool stopped = m_run.Stop.stop_requested();
        m_run.Fail(stopped ? core::TroubleKind::Stopped : core::TroubleKind::Unreadable,
                   stopped ? "stopped" : path + " cannot be read as a model", path);
      }
      return;
    }
    const float aspect = static_cast<float>(m_job.Width) / static_cast<float>(m_job.Height);
    view::ViewState state = view::FirstViewOf(*scene, aspect);
    if (!Choose(*scene, state)) return;
    view::ScenePose pose(*scene);
    pose.Set(view::PoseOf(state));
    if (!Aim(*scene, pose, aspect, state)) return;
    const view::MaterialSet materials = Materials(*scene);
    std::string reason;
    auto drawer = m_shared.Ready.Take(reason);
    if (drawer == nullptr) return m_run.Fail(core::TroubleKind::Missing, "There is no renderer: " + reason);
    const auto picture = Draw(*drawer, *scene, materials, state, pose, reason);
    m_shared.Ready.PutBack(std::move(drawer));
    if (!picture) return m_run.Fail(core::TroubleKind::Limit, reason);
    Write(*picture);
  }

 private:
  /// Takes the job's sequence, frame, skin and kind of picture. False if the model does not have them, which is told.
  bool Choose(const view::Scene& scene, view::ViewState& state) {
    state.IsPlaying = false;
    state.Extras.Grid = false;
    state.FixedLod = 0;
    state.Mode = m_job.Wireframe ? view::ShadingMode::Wireframe : view::ShadingMode::Textured;
    if (m_job.Sequence) {
      state.Sequence = scene.FindSequence(*m_job.Sequence);
      if (state.Sequence < 0) return Refuse("it has no sequence \"" + *m_job.Sequence + "\"");
    }
    const int frames = state.Sequence < 0 ? 1 : scene.Sequences[static_cast<size_t>(state.Sequence)].FrameCount;
    if (m_job.Frame >= frames) {
      return Refuse("there is no frame " + std::to_string(m_job.Frame) + ": the sequence has " +
                    std::to_string(frames) + ", counted from 0");
    }
    view::ShowFrame(scene, state, static_cast<float>(m_job.Frame));
    if (static_cast<size_t>(m_job.Skin) >= std::max(scene.Skins.size(), size_t{1})) {
      return Refuse("there is no skin " + std::to_string(m_job.Skin) + ": it has " +
                    std::to_string(scene.Skins.size()) + ", counted from 0");
    }
    state.Skin = m_job.Skin;
    return true;
  }

  bool Refuse(const std::string& why) {
    m_run.Tell({.Kind = core::TroubleKind::Refused, .File = m_run.Result.Source, .Text = why});
    return false;
  }

  /// Turns the camera to the model. False, told, if there is nothing to see.
  bool Aim(const view::Scene& scene, const view::ScenePose& pose, float aspect, view::ViewState& state) {
    view::Box box = view::PosedBox(scene, pose.SkinMatrices(), state.BodyGroups, 0);
    if (box.IsEmpty()) {
      for (const view::Matrix34& bone : pose.Bones()) box.Add(bone.Translation());
      if (box.IsEmpty() || scene.Bones.empty()) return Refuse("it has neither a mesh nor bones");
      state.Extras.Bones = true;
      m_run.Tell({.Level = core::Severity::Warning,
                  .Kind = core::TroubleKind::Missing,
                  .File = m_run.Result.Source,
                  .Text = "it has no mesh; its bones are drawn"});
    }
    state.Eye.Yaw = m_job.Angle.Yaw;
    state.Eye.Pitch = m_job.Angle.Pitch;
    state.LightYaw = m_job.Angle.Yaw + 35;  // from over the viewer's shoulder
    state.LightPitch = 45;
    state.Eye.Fit(box, aspect, Filled);
    return true;
  }

  view::MaterialSet Materials(const view::Scene& scene) {
    const view::MaterialFiles files(m_shared.Content->Files(), m_run.Result.Source);
    view::MaterialSet materials =
        view::LoadMaterials(scene.Materials, scene.MaterialDirectories, files, m_shared.Textures);
    for (view::MissingFile& missing : materials.Missing) {
      const std::string what = missing.NeededBy.empty() ? "the material " : "what the material needs: ";
      if (!m_job.Wireframe) {
        m_run.Tell({.Level = core::Severity::Warning,
                    .Kind = core::TroubleKind::Missing,
                    .File = m_run.Result.Source,
                    .Text = what + missing.Name + ": " + missing.Reason,
                    .Alike = "a material or texture: " + missing.Reason});
      }
      m_run.Result.Missing.push_back(
          {std::move(missing.Name), std::move(missing.NeededBy), std::move(missing.Reason), std::move(missing.Tried)});
    }
    return materials;
  }

  std::optional<textures::Picture> Draw(Drawer& drawer, const view::Scene& scene, const view::MaterialSet& materials,
                                        const view::ViewState& state, const view::ScenePose& pose,
                                        std::string& reason) {
    view::DrawTarget target{
        .Width = m_job.Width, .Height = m_job.Height, .Background = m_job.Transparent ? Nothing : Grey};
    target.Framebuffer = drawer.Context->Framebuffer(m_job.Width, m_job.Height, reason);
    if (target.Framebuffer == 0) return std::nullopt;
    drawer.Draws->Load(scene, materials);
    drawer.Draws->Draw(state, pose, target);
    return drawer.Context->Pixels();
  }

  void Write(const textures::Picture& picture) {
    const std::string& target = m_run.Result.Target;
    const auto unwritable = [&](const std::string& reason) {
      m_run.Tell({.Kind = core::TroubleKind::Unwritable,
                  .File = target,
                  .Text = target + " cannot be written: " + reason,
                  .Alike = "a picture cannot be written: " + reason});
    };
    MadeFolder folder;
    const std::string directory = core::PathText(core::NativePath(target).parent_path());
    if (!directory.empty()) {
      if (const std::string problem = folder.Make(directory); !problem.empty()) return unwritable(problem);
    }
    std::string reason;
    const auto bytes = textures::PngOf(picture, reason);
    if (!bytes) return unwritable(reason);
    auto file = core::OutputFile::Create(target, &reason);
    if (!file) return unwritable(reason);
    file->Write(*bytes);
    if (!file->Commit()) return unwritable(file->Error());
    m_run.Result.Files.push_back({target, bytes->size()});
  }

  const DrawPictures& m_job;
  Shared& m_shared;
  ItemRun& m_run;
};

/// What is told before the first item is: lines of the job.
class PlanTroubles : public core::TroubleSink {
 public:
  explicit PlanTroubles(JobPlan& plan) : m_plan(plan) {}
  void Tell(const core::Trouble& trouble) override { m_plan.Troubles.push_back(trouble); }

 private:
  JobPlan& m_plan;
};

}  // namespace

JobPlan Plan(const DrawPictures& job) {
  JobPlan plan;
  std::error_code ignored;
  const fs::path output = core::NativePath(job.Output);
  InputFiles found = FindInputFiles(job.Inputs, ModelExtension, job.Recursive, ContentOf(job)->Files());
  plan.Troubles = std::move(found.Troubles);
  const bool oneModel = job.Inputs.size() == 1 && found.Files.size() == 1 && !found.Files[0].Listed;
  const bool namesFile = core::EqualIgnoringCase(core::PathText(output.extension()), PictureExtension);
  if (oneModel && namesFile && !fs::is_directory(output, ignored)) {
    plan.Items.push_back({found.Files[0].Path, job.Output});
    return plan;
  }
  UniqueNames names;
  for (const InputFile& file : found.Files) {
    const std::string name = names.Take(WithoutExtension(file.Name, ModelExtension)) + std::string(PictureExtension);
    plan.Items.push_back({file.Path, core::PathBelow(core::PathText(output), name)});
  }
  return plan;
}

JobResult Run(const DrawPictures& given, Host& host, const std::stop_token& stop) {
  DrawPictures job = given;
  job.Content = ContentOf(given);
  JobPlan plan = Plan(job);
  PlanTroubles troubles(plan);
  view::TellGameProblem(job.Content->Files(), troubles);
  Shared shared(job);
  std::string reason;
  auto first = shared.Ready.Take(reason);
  if (first == nullptr) {
    return NotBegun(
        plan,
        {.Kind = core::TroubleKind::Missing, .Text = "No picture can be drawn, for there is no renderer: " + reason},
        host);
  }
  shared.Ready.PutBack(std::move(first));
  return RunItems(plan, {job.Threads, job.Threads}, host, stop, [&](size_t, ItemRun& run) {
    Drawing(job, shared, run).Work();
    for (const core::Trouble& trouble : job.Content->TakeTroubles()) run.Tell(trouble);
  });
}

}  // namespace tarnwick::jobs
