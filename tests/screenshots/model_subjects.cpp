#include <QAbstractButton>
#include <QLabel>

#include "app/kilndesk_dlg.h"
#include "core/settings_table.h"
#include "pages/animation_dialog.h"
#include "pages/entry_dialogs.h"
#include "pages/event_dialog.h"
#include "pages/help_dialogs.h"
#include "pages/model_options_dialog.h"
#include "pages/qc_compile_dialog.h"
#include "pages/ref_smd_info.h"
#include "pages/studiomdl_options_dialog.h"
#include "pages/studiomdl_status_dialog.h"
#include "pages/text_line_dialog.h"
#include "pages/tool_output.h"
#include "pages/whole_log_dialog.h"
#include "platform/page_report.h"
#include "project/project_file.h"
#include "screenshots/subject.h"
#include "support/crate_project.h"
#include "support/scratch_folder.h"

namespace tarnwick::screenshots {

namespace {

/// A dialog that needs no more than a desktop.
template <typename Dialog, typename... Arguments>
Subject Plain(const char* name, Arguments... arguments) {
  return {name, [arguments...](Stage& stage) {
            auto dialog = std::make_unique<Dialog>(stage.Desktop, nullptr, arguments...);
            dialog->Create();
            return dialog;
          }};
}

std::unique_ptr<QWidget> FinishedRun(Stage& stage) {
  auto status = std::make_unique<pages::CStudioMDLStatusDialog>(stage.Desktop, nullptr);
  status->Create();
  status->Log().AppendPageLog(
      "/home/ada/sdk/bin/studiomdl.exe -game \"/home/ada/mod\" \"/home/ada/crate/crate.qc\"\r\n"
      "Working on \"crate.qc\"\r\nWARNING: bone pelvis is not used\r\nERROR: could not load file spin.smd\r\n");
  auto* verdict = status->findChild<QLabel*>("verdictLabel");
  verdict->setText(
      "props/crate.mdl was not written, the file there is 3 days old; 1 error, 1 warning\n"
      "The first error: ERROR: could not load file spin.smd");
  verdict->show();
  return status;
}

/// The page's log after a compile by the program's own studiomdl.
std::unique_ptr<QWidget> CompiledByOurOwn(Stage& stage) {
  auto status = std::make_unique<pages::CStudioMDLStatusDialog>(stage.Desktop, nullptr);
  status->Create();
  status->Log().AppendPageLog(
      "studiomdl: our own\r\n/opt/tarnwick/bin/sdk/studiomdl.exe -game \"/home/ada/mod\" "
      "\"/home/ada/walker/walker.qc\"\r\n"
      "Working on \"walker.qc\"\r\nwriting /home/ada/mod/models/props/walker.mdl: 2316 bytes\r\n"
      "bones 1, vertices 691, triangles 792, animations 1, sequences 1\r\nCompleted \"walker.qc\"\r\n\r\n"
      "[props/walker.mdl was written (2.26 KB); no errors, no warnings]\r\n");
  auto* verdict = status->findChild<QLabel*>("verdictLabel");
  verdict->setText("props/walker.mdl was written (2.26 KB); no errors, no warnings");
  verdict->show();
  for (const char* button : {"copyCommandButton", "wholeLogButton"}) {
    status->findChild<QAbstractButton*>(button)->setEnabled(true);
  }
  return status;
}

std::unique_ptr<QWidget> WholeLog(Stage& stage) {
  tools::WholeLog log;
  log.Append("Working on \"crate.qc\"\r\nSMD MODEL crate.smd\r\nWARNING: bone pelvis is not used\r\n");
  for (int i = 1; i <= 40; ++i) log.Append("Processing material " + std::to_string(i) + " of 40\r\n");
  auto dialog = std::make_unique<pages::CWholeLogDialog>(
      stage.Desktop, nullptr, "/home/ada/sdk/bin/studiomdl.exe -game \"/home/ada/mod\" \"/home/ada/crate/crate.qc\"",
      log);
  dialog->Create();
  return dialog;
}

tests::CrateProject& Crate() {
  static auto crate = [] {
    auto made = std::make_unique<tests::CrateProject>("/home/ada/crate/");
    made->Project.Attachments.Add({"lid", "crate.top", "0 0 12", "0 0 0"});
    made->Project.Sequences.At(0).SetCommands(std::vector<std::string>{"fadein 0.2", "fadeout 0.2"});
    return made;
  }();
  return *crate;  // outlives the dialogs that refer to it
}

/// Files that a window reads, as long as the program runs.
const tests::ScratchFolder& Folder() {
  static const tests::ScratchFolder folder;
  return folder;
}

std::unique_ptr<app::CKilndeskDlg> ModelWindow(Stage& stage) {
  core::setting::GameDirectory.Write(stage.Settings, "/home/ada/.steam/steam/steamapps/common/Half-Life 2/hl2");
  core::setting::MaterialsDir.Write(stage.Settings, "props");
  auto window = std::make_unique<app::CKilndeskDlg>(stage.Settings, stage.Desktop);
  window->Create();
  return window;
}

std::unique_ptr<QWidget> LoadedProject(Stage& stage) {
  const std::string path = Folder().Path("crate.sc");
  project::ProfileStore store;
  platform::PageReport report(stage.Desktop, nullptr);
  project::SaveProjectFile(path, Crate().Project, store, report);
  auto window = ModelWindow(stage);
  stage.Desktop.Choices = {path};
  window->findChild<QAbstractButton*>("loadButton")->click();
  return window;
}

std::unique_ptr<QWidget> ReadyMadeScript(Stage& stage) {
  core::setting::CompileMode.Write(stage.Settings, 1);
  core::setting::QcFile.Write(stage.Settings, "/home/ada/crate/crate.qc");
  auto window = ModelWindow(stage);
  window->findChild<pages::CQCCompileDialog*>()->findChild<pages::CToolOutput*>()->ShowText(
      "/home/ada/sdk/bin/studiomdl.exe -game \"/home/ada/mod\" \"/home/ada/crate/crate.qc\"\r\n"
      "Working on \"crate.qc\"\r\nERROR: could not load file spin.smd\r\n\r\nStudioMDL Thread complete\r\n");
  return window;
}

std::unique_ptr<QWidget> Inspected(Stage& stage) {
  std::string smd = "version 1\nnodes\n0 \"root\" -1\n1 \"lid\" 0\nend\nskeleton\ntime 0\nend\ntriangles\n";
  for (const char* material : {"crate_wood.bmp", "crate_wood.bmp", "crate_iron.bmp"}) {
    smd += std::string(material) + "\n0 0 0 0 0 0 1 0 0\n0 1 0 0 0 0 1 1 0\n0 0 1 0 0 0 1 0 1\n";
  }
  auto dialog = std::make_unique<pages::CRefSMDInfo>(stage.Desktop, nullptr);
  dialog->SmdPath = Folder().Path("crate.smd");
  tests::WriteText(dialog->SmdPath, smd + "end\n");
  dialog->Create();
  return dialog;
}

}  // namespace

std::vector<Subject> ModelSubjects() {
  using namespace pages;
  return {
      {"main-model-compile", LoadedProject},
      {"main-existing-qc", ReadyMadeScript},
      {"studiomdl-status", FinishedRun},
      {"studiomdl-status-written", CompiledByOurOwn},
      {"whole-log", WholeLog},
      {"studiomdl-options",
       [](Stage& stage) {
         return std::make_unique<CStudiomdlOptionsDialog>(stage.Desktop, nullptr, stage.Options.studioMdlOptions);
       }},
      {"sequence",
       [](Stage& stage) {
         auto dialog = std::make_unique<CAnimationDialog>(stage.Desktop, nullptr, Crate().Project.Sequences.At(0));
         dialog->Create();
         return dialog;
       }},
      {"model-options",
       [](Stage& stage) {
         auto dialog = std::make_unique<CModelOptionsDialog>(PageContext{stage.Settings, stage.Desktop, stage.Options},
                                                             nullptr, Crate().Project);
         dialog->Create();
         return dialog;
       }},
      Plain<CEventDialog>("event"),
      Plain<CAnimEditCtrl>("sequence-command"),
      Plain<CQCCmdDialog>("qc-command"),
      Plain<CAttachDialog>("attachment"),
      Plain<CGibDialog>("gib", std::string()),
      Plain<CLodDialog>("lod"),
      Plain<CSkinDialog>("skin"),
      Plain<CMdlMatDialog>("material-path-help"),
      Plain<CSurfacePropHelpDialog>("surface-prop-help"),
      Plain<CPropPhysicsHelpDialog>("prop-physics-help"),
      {"reference-smd-info", Inspected},
  };
}

}  // namespace tarnwick::screenshots
