#include <QProgressBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <filesystem>

#include "app/about_dlg.h"
#include "app/game_config_dialog.h"
#include "app/game_directory_help_dialog.h"
#include "app/help_window.h"
#include "app/kilndesk_dlg.h"
#include "core/settings_table.h"
#include "pages/collision_help_dialog.h"
#include "pages/decompiler_dialog.h"
#include "pages/decompiler_status.h"
#include "pages/sources_view.h"
#include "screenshots/subject.h"
#include "view/widget/model_viewer.h"
#include "view/widget/model_window.h"

namespace tarnwick::screenshots {

namespace {

namespace setting = core::setting;

template <typename Dialog>
std::unique_ptr<QWidget> Created(std::unique_ptr<Dialog> dialog) {
  dialog->Create();
  return dialog;
}

void FillDirectories(Stage& stage) {
  setting::GameDirectory.Write(stage.Settings, "/home/ada/.steam/steam/steamapps/common/Half-Life 2/hl2");
  setting::SdkDirectory.Write(stage.Settings, "/home/ada/sdk/bin");
}

/// The main window on one of its tabs.
Subject MainWindow(const char* name, int tab) {
  return {name, [tab](Stage& stage) {
            FillDirectories(stage);
            setting::TabSelect.Write(stage.Settings, tab);
            setting::LastMdlFile.Write(stage.Settings, "/home/ada/models/walker.mdl");
            setting::OutputDirectory.Write(stage.Settings, "/home/ada/sources/walker");
            return Created(std::make_unique<app::CKilndeskDlg>(stage.Settings, stage.Desktop));
          }};
}

std::unique_ptr<QWidget> RunningJob(Stage& stage) {
  auto status = std::make_unique<pages::CDecompilerStatus>(
      stage.Desktop, nullptr, [] {}, [] {});
  status->Begin("/home/ada/sources");
  status->Show(jobs::Started{2});
  status->Show(jobs::ItemStarted{0, "/home/ada/models/crate.mdl", "/home/ada/sources/crate"});
  jobs::ItemResult crate{.Judged = jobs::Verdict::Succeeded};
  crate.Files = {{"ravelback.qc", 400}, {"crate.smd", 90'000}};
  status->Show(jobs::ItemFinished{0, crate});
  status->Show(jobs::ItemStarted{1, "/home/ada/models/walker.mdl", "/home/ada/sources/walker"});
  status->Show(
      jobs::Line{1, jobs::LineSource::Log, tools::LineKind::Plain,
                 "Loaded model /home/ada/models/walker.mdl\r\nLoaded Vertices /home/ada/models/walker.dx80.vtx\r\n"
                 "Creating /home/ada/sources/walker/ravelback.qc\r\nCreating /home/ada/sources/walker/walker.smd\r\n"});
  status->Show(jobs::Progress{1, "lod1_walker.smd", 2, 3});
  return Created(std::move(status));
}

jobs::ItemResult Result(size_t files, std::vector<decompiler::LostKind> lost) {
  jobs::ItemResult result{.Judged = jobs::Verdict::Succeeded};
  for (size_t i = 0; i < files; ++i) result.Files.push_back({"file" + std::to_string(i), 1'000});
  result.Lost = std::move(lost);
  return result;
}

constexpr std::array Names = {"walker", "crate", "lamp", "barrel rusty"};

std::unique_ptr<pages::CDecompilerStatus> Jobs(Stage& stage, const std::vector<jobs::ItemResult>& results) {
  auto status = std::make_unique<pages::CDecompilerStatus>(
      stage.Desktop, nullptr, [] {}, [] {});
  status->Begin("/home/ada/sources");
  status->Show(jobs::Started{results.size()});
  jobs::JobResult all;
  for (size_t i = 0; i < results.size(); ++i) {
    const std::string name = Names[i];
    const std::string folder = "/home/ada/sources/" + name;
    jobs::ItemResult result = results[i];
    result.Input = result.Source = "/home/ada/models/" + name + ".mdl";
    result.Target = folder;
    status->Show(jobs::ItemStarted{i, result.Input, folder});
    status->Show(jobs::Line{i, jobs::LineSource::Log, tools::LineKind::Plain,
                            "Loaded model " + result.Input + "\r\nCreating " + folder + "/ravelback.qc\r\n"});
    for (const core::Trouble& trouble : result.Troubles) status->Show(jobs::Told{i, trouble});
    status->Show(jobs::ItemFinished{i, result});
    all.Items.push_back(result);
  }
  status->Show(jobs::Finished{all});
  status->Bar().setValue(100);
  status->Create();
  return status;
}

/// One model that is complete but for some things.
std::unique_ptr<QWidget> LostThings(Stage& stage) {
  return Jobs(stage, {Result(9, {{"header flags", 1}, {"names of hit boxes", 17}, {"unknown bone flags", 3}})});
}

/// Several models, with all that can become of one.
std::unique_ptr<QWidget> SeveralModels(Stage& stage) {
  jobs::ItemResult damaged{.Judged = jobs::Verdict::Failed};
  damaged.Troubles = {{.Text = "the bones at byte 408 (4,000,000 records) run past the end of the file (2,064 bytes)"}};
  return Jobs(stage,
              {Result(9, {}), Result(4, {{"masses of physics", 1}}), damaged, {.Judged = jobs::Verdict::Stopped}});
}

/// Two models after "Verify", one of which does not come back.
std::unique_ptr<QWidget> Verified(Stage& stage) {
  auto status = Jobs(stage, {Result(9, {}), Result(4, {})});
  status->BeginVerifying();
  jobs::JobResult all;
  all.Items = {{.Judged = jobs::Verdict::Succeeded}, {.Judged = jobs::Verdict::Failed}};
  all.Items[0].Verified.emplace();
  all.Items[0].Shown = all.Items[0].Verified->Line();
  all.Items[1].Troubles = {{.Text = "crate.qc(12): could not load file lid.smd"}};
  status->Show(jobs::Started{all.Items.size()});
  for (size_t i = 0; i < all.Items.size(); ++i) {
    all.Items[i].Input = status->Models()[i];
    status->Show(jobs::ItemStarted{i, all.Items[i].Input, {}});
    status->Show(jobs::ItemFinished{i, all.Items[i]});
  }
  status->Show(jobs::Finished{all});
  return status;
}

/// The bundled sample, with its materials, at a place with a short name.
std::string SampleModel() {
  static const QTemporaryDir folder;
  const std::filesystem::path to = folder.path().toStdString();
  for (const char* ending : {"walker.mdl", "walker.vvd", "walker.dx90.vtx", "walker.phy", "materials"}) {
    std::error_code error;  // it is there from the picture before
    std::filesystem::copy(std::filesystem::path(TARNWICK_SAMPLES) / ending, to / ending,
                          std::filesystem::copy_options::recursive, error);
  }
  return folder.filePath("walker.mdl").toStdString();
}

void WaitFor(view::ModelViewer& viewer) {
  for (int i = 0; i < 200 && viewer.IsBusy(); ++i) QTest::qWait(20);
  viewer.View().Change([](view::ViewState& state) { state.IsPlaying = false; });
}

/// The decompile page with the model that is named beside it.
std::unique_ptr<QWidget> DecompilePageWithModel(Stage& stage) {
  FillDirectories(stage);
  setting::TabSelect.Write(stage.Settings, 2);
  setting::ModelPane.Write(stage.Settings, 1);
  setting::LastMdlFile.Write(stage.Settings, SampleModel());
  setting::OutputDirectory.Write(stage.Settings, SampleModel() + ".sources");
  auto window = Created(std::make_unique<app::CKilndeskDlg>(stage.Settings, stage.Desktop));
  WaitFor(*window->findChild<view::ModelViewer*>());
  return window;
}

/// The same after a job.
std::unique_ptr<QWidget> DecompilePageWithSources(Stage& stage) {
  auto window = DecompilePageWithModel(stage);
  auto* page = window->findChild<pages::CDecompilerDialog*>();
  page->OnExtract();
  for (int i = 0; i < 200 && !page->isEnabled(); ++i) QTest::qWait(20);
  window->findChild<pages::CDecompilerStatus*>()->hide();
  auto* sources = window->findChild<pages::SourcesView*>();
  for (int i = 0; i < 200 && sources->IsBusy(); ++i) QTest::qWait(20);
  return window;
}

/// The model viewer on one of its tabs.
Subject ModelWindow(const char* name, int tab, view::ViewExtras extras) {
  return {name, [tab, extras](Stage& stage) {
            auto window = std::make_unique<view::ModelWindow>(stage.Desktop);
            window->setAttribute(Qt::WA_DeleteOnClose, false);
            window->Open(QString::fromStdString(SampleModel()), {});
            WaitFor(window->Viewer());
            window->Viewer().View().Change([&](view::ViewState& state) { state.Extras = extras; });
            window->findChild<QTabWidget*>("viewerTabs")->setCurrentIndex(tab);
            return window;
          }};
}

}  // namespace

std::vector<Subject> ShellSubjects() {
  return {
      {"main-first-start",
       [](Stage& stage) { return Created(std::make_unique<app::CKilndeskDlg>(stage.Settings, stage.Desktop)); }},
      MainWindow("main-material-compile", 1),
      MainWindow("main-model-decompile", 2),
      {"main-model-decompile-shown", DecompilePageWithModel},
      {"main-model-decompile-sources", DecompilePageWithSources},
      MainWindow("main-vtf-export", 3),
      {"decompiler-status", RunningJob},
      {"decompiler-status-lost", LostThings},
      {"decompiler-status-several", SeveralModels},
      {"decompiler-status-verified", Verified},
      {"game-config",
       [](Stage& stage) {
         FillDirectories(stage);
         return Created(std::make_unique<app::CGameConfigDialog>(stage.Settings, stage.Desktop, nullptr));
       }},
      {"game-directory-help",
       [](Stage& stage) { return Created(std::make_unique<app::CGameDirectoryHelpDialog>(stage.Desktop, nullptr)); }},
      {"collision-help",
       [](Stage& stage) { return Created(std::make_unique<pages::CCollisionHelpDialog>(stage.Desktop, nullptr)); }},
      {"help",
       [](Stage& stage) {
         auto help = std::make_unique<app::CHelpWindow>(stage.Desktop, nullptr, [] {});
         help->ShowAt("Compiling models");
         return help;
       }},
      {"about", [](Stage& stage) { return Created(std::make_unique<app::CAboutDlg>(stage.Desktop, nullptr)); }},
  };
}

std::vector<Subject> ViewSubjects() {
  return {ModelWindow("model-viewer", 0, {}),
          ModelWindow("model-viewer-display", 1,
                      {.Bones = true, .BoneNames = true, .Attachments = true, .Hitboxes = true, .Grid = true}),
          ModelWindow("model-viewer-parts", 2, {.Hulls = true, .Boxes = true}),
          ModelWindow("model-viewer-pose", 3, {}),
          ModelWindow("model-viewer-face", 4, {}),
          ModelWindow("model-viewer-facts", 5, {.Normals = true})};
}

}  // namespace tarnwick::screenshots
