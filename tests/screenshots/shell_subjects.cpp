#include "app/about_dlg.h"
#include "app/game_config_dialog.h"
#include "app/game_directory_help_dialog.h"
#include "app/help_window.h"
#include "app/kilndesk_dlg.h"
#include "core/settings_table.h"
#include "pages/collision_help_dialog.h"
#include "pages/decompiler_status.h"
#include "screenshots/subject.h"

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

}  // namespace

std::vector<Subject> ShellSubjects() {
  return {
      {"main-first-start",
       [](Stage& stage) { return Created(std::make_unique<app::CKilndeskDlg>(stage.Settings, stage.Desktop)); }},
      MainWindow("main-material-compile", 1),
      MainWindow("main-model-decompile", 2),
      MainWindow("main-vtf-export", 3),
      {"decompiler-status", RunningJob},
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

}  // namespace tarnwick::screenshots
