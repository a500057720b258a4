#pragma once

#include <memory>

#include "core/app_settings.h"
#include "platform/dialog.h"

namespace Ui {
class GameConfigDialog;
}

namespace tarnwick::app {

/// Sets the Steam game directory, the SDK tools directory and, where Windows programs need it, the Wine that runs them;
/// also whether images of uncommon formats are read. A directory that is picked with a browse button is stored at once,
/// all else on OK. Nothing is checked: a wrong one shows when a tool is not found.
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
  void ShowToolsInUse();
  void OnBrowseWine();

  core::AppSettings& m_settings;
  std::unique_ptr<Ui::GameConfigDialog> m_ui;
  std::string m_gameDirectory;
  std::string m_sdkDirectory;
  std::string m_wineProgram;
  bool m_uncommonFormats = true;
};

}  // namespace tarnwick::app
