#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "core/app_settings.h"
#include "pages/content_dialog.h"
#include "pages/decompiler_dialog.h"
#include "pages/mat_dialog.h"
#include "pages/mdl_sel_dialog.h"
#include "pages/vtf_dialog.h"
#include "platform/dialog.h"
#include "project/model_options.h"

namespace Ui {
class KilndeskDlg;
}

namespace tarnwick::app {

class CHelpWindow;

/// The main dialog: the game directory, the four pages behind their tabs, and what belongs to the program as a whole.
/// The pages exist for the dialog's whole life; changing tabs only hides and shows them.
class CKilndeskDlg : public platform::CDialog {
  Q_OBJECT

 public:
  CKilndeskDlg(core::AppSettings& settings, platform::Desktop& desktop);
  ~CKilndeskDlg() override;

  /// Shows archives in the window of game content, and hands other files to the page of the selected tab, unless a job
  /// keeps that busy.
  void OnDropFiles(const platform::DroppedFiles& drop) override;

  /// Shows, as soon as the dialog is there, the page that works on these files, with them in its fields: what the
  /// program was started with. Files that no page knows are named in a box.
  void OpenAtStart(std::vector<std::string> paths) { m_startFiles = std::move(paths); }

 protected:
  void OnInitDialog() override;
  /// "Exit" and the close box: saves the pages' values and ends the dialog. Asks first while a job is running.
  void OnCancel() override;
  /// Says which version this is, and opens the maker's page that tells whether there is a newer one.
  virtual void OnCheckForUpdates();

  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  static constexpr int PageCount = 4;

  void AddPage(pages::CPage& page, const char* tabText);
  void TurnTo(int step);
  void OnAbout();
  void OnConfigure();
  void OnGameDirectoryHelp();
  void OnHelp();
  void OpenPage(const char* address);
  void ShowGameDirectory();
  bool MayClose();
  void OpenStartFiles();
  size_t OpenInPages(const std::vector<std::string>& files);
  size_t OpenContent(const std::vector<std::string>& names);
  pages::CContentDialog& Content();
  void OnBrowseContent(pages::CPage& page, std::optional<archives::ContentKind> kind);
  void OnBrowseContentFor(std::optional<archives::ContentKind> kind, const pages::ContentTaker& take);
  bool OfferEditor(const std::vector<std::string>& paths);
  void RestoreGeometry();
  void SaveGeometry();

  core::AppSettings& m_settings;
  std::unique_ptr<Ui::KilndeskDlg> m_ui;
  project::ModelOptions m_modelOptions;
  tools::PageLog m_pageLog;
  pages::PageContext m_context;
  pages::CMDLSelDialog m_modelPage;
  pages::CMatDialog m_materialPage;
  pages::CDecompilerDialog m_decompilerPage;
  pages::CVTFDialog m_texturePage;
  std::array<pages::CPage*, PageCount> m_pages;  // by tab
  std::vector<std::string> m_startFiles;
  std::unique_ptr<pages::CContentDialog> m_content;  // once it has been wanted
  pages::CPage* m_contentWish = nullptr;             // the page that asked for it last
  pages::ContentTaker m_contentTaker = {};           // or the other window that did
  std::unique_ptr<CHelpWindow> m_help;               // once it has been wanted
  QByteArray m_startGeometry;
};

}  // namespace tarnwick::app
