#pragma once

#include <memory>

#include "core/app_settings.h"
#include "platform/dialog.h"

namespace Ui {
class GameConfigDialog;
}

namespace tarnwick::app {

/// Sets the Steam game directory and the SDK tools directory. A directory that is picked with a browse button is stored
/// at once, one that is typed on OK. Nothing is checked: a wrong one shows when a tool is not found.
class CGameConfigDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CGameConfigDialog(core::AppSettings& settings, platform::Desktop& desktop, QWidget* parent);
  ~CGameConfigDialog() override;

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;

 private:
  void OnBrowseGame();
  void OnBrowseSdk();
  void OnOwnTools();

  core::AppSettings& m_settings;
  std::unique_ptr<Ui::GameConfigDialog> m_ui;
  std::string m_gameDirectory;
  std::string m_sdkDirectory;
};

}  // namespace tarnwick::app
