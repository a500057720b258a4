#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "view/widget/background.h"
#include "view/widget/texture_file.h"

class QComboBox;
class QFileSystemWatcher;
class QLabel;
class QPushButton;
class QSpinBox;

namespace tarnwick::view {

class PictureView;

/// A texture with the controls to look at each of its images: mip level, frame (also played), cube face, slice,
/// channels and zoom, and what its header tells. The file is read and decoded beside the window, and again when it
/// changes.
class TextureView : public QWidget {
  Q_OBJECT

 public:
  explicit TextureView(QWidget* parent = nullptr);

  /// Has the texture shown that `files` have under the name `path`, or the reason why it cannot be; null for the disk.
  /// An empty path shows nothing.
  void ShowFile(const QString& path, std::shared_ptr<const core::FileSource> files = {});
  QString File() const { return m_path; }
  /// Whether what is shown is not yet what was asked for.
  bool IsBusy() const { return m_waiting.isActive() || m_loading.IsRunning() || m_decoding.IsRunning(); }

 private:
  void Load();
  void TakeFile(std::shared_ptr<const TextureFile> file, const QString& reason);
  void Offer(QWidget& control, bool isOffered);
  void ShowImage();
  void ShowNextFrame();
  void TakeZoom(double zoom);

  QString m_path;
  std::shared_ptr<const core::FileSource> m_files;  // null: the disk
  QString m_shownPath;                              // whose settings the controls hold
  std::shared_ptr<const TextureFile> m_file;
  PictureView* m_picture;
  QLabel* m_facts;
  QComboBox* m_mip;
  QSpinBox* m_frame;
  QPushButton* m_play;
  QComboBox* m_face;
  QSpinBox* m_slice;
  QComboBox* m_channels;
  QComboBox* m_zoom;
  QFileSystemWatcher* m_watcher;
  QTimer m_waiting;  // until typing, or whoever writes the file, pauses
  QTimer m_playing;
  Background m_loading;
  Background m_decoding;
};

}  // namespace tarnwick::view
