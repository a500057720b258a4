#pragma once

#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/app_settings.h"
#include "pages/content_drag.h"
#include "pages/content_reader.h"
#include "platform/dialog.h"
#include "platform/job_runner.h"

namespace Ui {
class ContentDialog;
}

namespace tarnwick::pages {

class ContentExtractionJob;

/// What the content window works with; all of it outlives the window.
struct ContentContext {
  core::AppSettings& Settings;
  platform::Desktop& Desktop;
  std::function<void()> Configure = {};  // opens the configuration of the game; may be missing
  /// Takes names of files ("game:models/crate.mdl", "a.vpk:models/crate.mdl") into the field of a page. Gives how many
  /// of them a page takes.
  std::function<size_t(const std::vector<std::string>& names)> Open = {};
  std::optional<std::string> GameDirectory = {};  // in place of the one in the settings
};

/// The window "Game content": all files of the search paths of the game, or of archives that were opened, to be looked
/// through, searched, extracted, dragged out and opened in the field of a page.
class CContentDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CContentDialog(const ContentContext& context, QWidget* parent);
  ~CContentDialog() override;

  /// Shows the window with the files of the game, those of one kind alone at first.
  void BrowseGame(std::optional<archives::ContentKind> kind);
  /// Shows the window with the files of archives.
  void BrowseArchives(const std::vector<std::string>& paths);
  /// Writes what is kept for the next run.
  void SaveSettings();

  void OnDropFiles(const platform::DroppedFiles& drop) override;

  /// The selected files, or if there are none all that are listed, with what belongs to models where that is wanted.
  std::vector<uint32_t> ChosenFiles() const;

 protected:
  void OnInitDialog() override;
  void OnCancel() override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Show(const ContentSource& source, std::optional<archives::ContentKind> kind);
  void Read();
  void Refresh();
  void OnOpened();
  void OnFound(const std::vector<uint32_t>& files);
  void OnOpen();
  void OnOpenArchive();
  void OnExtract();
  void OnExtracted(const ContentExtractionJob& done);
  void OnConfigure();
  void Drag();
  void Search();
  void ShowMessage(const QString& text, bool configure = false);
  void ShowState();
  std::optional<archives::ContentKind> Kind() const;
  std::string NameOf(uint32_t file) const;
  ContentSource GameSource() const;
  std::string GameDirectory() const;

  const ContentContext m_context;
  std::unique_ptr<Ui::ContentDialog> m_ui;
  ContentSource m_source;
  ContentReader m_reader;
  QString m_outcome;           // of the last extraction, until something else is done
  std::string m_outputFolder;  // of the last extraction
  ContentDrags m_drags;
  QTimer m_changes;  // when to look for them
  platform::JobRunner m_jobs;
};

}  // namespace tarnwick::pages
