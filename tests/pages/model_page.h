#pragma once

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <memory>
#include <string>

#include "pages/mdl_dialog.h"
#include "project/model_options.h"
#include "support/scratch_folder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

/// A page in a window of its own, and a folder with a stand-in for studiomdl.
class ModelPages : public testing::Test {
 protected:
  template <typename Page>
  std::unique_ptr<Page> Open() {
    auto page = std::make_unique<Page>(PageContext{m_settings, m_desktop, m_options}, nullptr);
    page->Create();
    page->AcceptFiles();
    page->show();
    return page;
  }

  /// Makes a tool of the SDK a shell script.
  void Tool(const char* name, const std::string& script) {
    tests::WriteShellProgram(m_folder.Path(name), script);
    m_settings.Values["Tarnwick/SDKDirectory"] = m_folder.Path();
    m_settings.Values["Tarnwick/GameDirectory"] = "/no/game";
  }

  /// A form that is filled in as far as a compile needs it.
  std::unique_ptr<CMDLDialog> OpenCrate() {
    auto page = Open<CMDLDialog>();
    tests::ControlOf<QLineEdit>(*page, "modelFileEdit").setText("props/crate.mdl");
    tests::ControlOf<QLineEdit>(*page, "referenceEdit").setText(QString::fromStdString(m_folder.Path("crate.smd")));
    tests::ControlOf<QCheckBox>(*page, "referenceCollisionCheck").click();
    page->SetMaterialDirectory("props");
    return page;
  }

  /// Answers the sequence editor with a name and OK.
  static void NameSequence(const char* name) {
    tests::WhenModalOpens([name](QWidget& dialog) {
      tests::ControlOf<QLineEdit>(dialog, "nameEdit").setText(name);
      if (tests::ControlOf<QLineEdit>(dialog, "smdEdit").text().isEmpty()) {
        tests::ControlOf<QLineEdit>(dialog, "smdEdit").setText("a.smd");
      }
      static_cast<QDialog&>(dialog).accept();
    });
  }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
};

}  // namespace tarnwick::pages
