#include "pages/animation_dialog.h"
#include "pages/entry_dialogs.h"
#include "pages/event_dialog.h"
#include "pages/help_dialogs.h"
#include "pages/model_options_dialog.h"
#include "pages/ref_smd_info.h"
#include "pages/studiomdl_options_dialog.h"
#include "pages/studiomdl_status_dialog.h"
#include "pages/text_line_dialog.h"
#include "pages/whole_log_dialog.h"
#include "screenshots/subject.h"
#include "support/crate_project.h"

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
  return status;
}

tests::CrateProject& Crate() {
  static tests::CrateProject crate("/home/ada/crate/");  // outlives the dialogs that refer to it
  return crate;
}

}  // namespace

std::vector<Subject> ModelSubjects() {
  using namespace pages;
  return {
      {"studiomdl-status", FinishedRun},
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
      Plain<CRefSMDInfo>("reference-smd-info"),
  };
}

}  // namespace tarnwick::screenshots
