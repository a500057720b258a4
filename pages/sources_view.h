#pragma once

#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "core/written_file.h"
#include "platform/desktop.h"
#include "view/widget/background.h"
#include "view/widget/shown_model.h"

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;
class QTreeWidget;

namespace tarnwick::view {
class ModelView;
}

namespace tarnwick::pages {

class SourceHighlighter;

/// The files that a job has written, with a look at the one that is chosen: a mesh or an animation as a picture,
/// scripts and the rest as coloured text.
class SourcesView : public QWidget {
  Q_OBJECT

 public:
  explicit SourcesView(platform::Desktop& desktop, QWidget* parent = nullptr);

  void Clear();
  /// Adds files of the model that was read from `model` and whose sources are in `folder`.
  void Add(const std::string& model, const std::string& folder, const std::vector<core::WrittenFile>& files);
  /// Where the textures of meshes are looked for too.
  void SetGameDirectory(const std::string& directory) { m_gameDirectory = directory; }
  bool IsEmpty() const;
  bool IsBusy() const { return m_reading.IsRunning(); }

 private:
  void Look();
  void OpenFolder();
  void Edit();
  std::string ChosenPath() const;

  platform::Desktop& m_desktop;
  std::string m_gameDirectory;
  QTreeWidget* m_list;
  QStackedWidget* m_look;
  QPlainTextEdit* m_text;
  SourceHighlighter* m_highlighter;
  view::ModelView* m_mesh;
  QCheckBox* m_asText;
  QPushButton* m_folderButton;
  QPushButton* m_editButton;
  std::shared_ptr<view::ModelSource> m_source;
  view::Background m_reading;
};

}  // namespace tarnwick::pages
