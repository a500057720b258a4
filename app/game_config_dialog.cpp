#include "app/game_config_dialog.h"

#include "core/settings_table.h"
#include "platform/bitmap_button.h"
#include "platform/text.h"
#include "tools/sdk_tools.h"
#include "ui_game_config_dialog.h"

namespace tarnwick::app {

namespace setting = core::setting;

CGameConfigDialog::CGameConfigDialog(core::AppSettings& settings, platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_settings(settings), m_ui(std::make_unique<Ui::GameConfigDialog>()) {
  m_ui->setupUi(this);
  connect(m_ui->browseGameButton, &QAbstractButton::clicked, this, &CGameConfigDialog::OnBrowseGame);
  connect(m_ui->browseSdkButton, &QAbstractButton::clicked, this, &CGameConfigDialog::OnBrowseSdk);
  connect(m_ui->ownToolsButton, &QAbstractButton::clicked, this, &CGameConfigDialog::OnOwnTools);
  connect(m_ui->browseWineButton, &QAbstractButton::clicked, this, &CGameConfigDialog::OnBrowseWine);
#ifdef _WIN32
  m_ui->wineGroup->hide();
#endif
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

CGameConfigDialog::~CGameConfigDialog() = default;

void CGameConfigDialog::OnInitDialog() {
  m_sdkDirectory = setting::SdkDirectory.Read(m_settings);
  m_gameDirectory = setting::GameDirectory.Read(m_settings);
  m_wineProgram = setting::WineProgram.Read(m_settings);
  m_uncommonFormats = setting::UncommonImageFormats.Read(m_settings) != 0;
  CDialog::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  connect(m_ui->sdkEdit, &QLineEdit::textChanged, this, &CGameConfigDialog::ShowToolsInUse);
  ShowToolsInUse();
}

void CGameConfigDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->gameEdit, m_gameDirectory);
  DDX_Text(exchange, *m_ui->sdkEdit, m_sdkDirectory);
  DDX_Text(exchange, *m_ui->wineEdit, m_wineProgram);
  DDX_Check(exchange, *m_ui->uncommonCheck, m_uncommonFormats);
}

void CGameConfigDialog::OnBrowseGame() {
  const auto chosen = DesktopSeam().ChooseFolder(this, {}, setting::GameDirectory.Read(m_settings));
  if (!chosen) return;
  m_ui->gameEdit->setText(platform::ToQt(*chosen));
  setting::GameDirectory.Write(m_settings, *chosen);
}

void CGameConfigDialog::OnBrowseSdk() {
  const auto chosen = DesktopSeam().ChooseFolder(this, {}, platform::FromQt(m_ui->sdkEdit->text()));
  if (!chosen) return;
  m_ui->sdkEdit->setText(platform::ToQt(*chosen));
  setting::SdkDirectory.Write(m_settings, *chosen);
}

void CGameConfigDialog::OnOwnTools() {
  const auto own = tools::BundledSdkDirectory();
  if (!own) {
    DesktopSeam().Box(this, platform::BoxIcon::Exclamation,
                      "The program's own tools are not in the directory sdk beside the program.", "Warning");
    return;
  }
  const std::string sdkDirectory = platform::FromQt(m_ui->sdkEdit->text());
  if (tools::HoldsSdkTools(sdkDirectory)) {
    // A directory of our own in its place would hide the SDK's tools, hlmv too.
    DesktopSeam().Box(this, platform::BoxIcon::Information,
                      "The directory holds tools of the SDK, which come first; our own stand in for those that it "
                      "lacks.\r\nEmpty it to use our own alone.",
                      "Own Tools");
    return;
  }
  m_ui->sdkEdit->setText(platform::ToQt(*own));  // stored on OK, as if typed
}

void CGameConfigDialog::ShowToolsInUse() {
  m_ui->toolsLabel->setText(platform::ToQt(tools::ToolsInUseText(platform::FromQt(m_ui->sdkEdit->text()))));
}

void CGameConfigDialog::OnBrowseWine() {
  const auto chosen = DesktopSeam().ChooseFileToOpen(this, {.Title = "Name of Wine Program",
                                                            .Filter = "All Files (*)|*|",
                                                            .StartName = platform::FromQt(m_ui->wineEdit->text()),
                                                            .StartDirectory = "/usr/bin"});
  if (chosen) m_ui->wineEdit->setText(platform::ToQt(*chosen));
}

void CGameConfigDialog::OnOK() {
  UpdateData(true);
  setting::GameDirectory.Write(m_settings, m_gameDirectory);
  setting::SdkDirectory.Write(m_settings, m_sdkDirectory);
  if (m_wineProgram != setting::WineProgram.Read(m_settings)) setting::WineProgram.Write(m_settings, m_wineProgram);
  if (m_uncommonFormats != (setting::UncommonImageFormats.Read(m_settings) != 0)) {
    setting::UncommonImageFormats.Write(m_settings, m_uncommonFormats ? 1 : 0);
  }
  EndDialog(Accepted);
}

}  // namespace tarnwick::app
