#include "view/widget/model_window.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMenuBar>
#include <QMimeData>

#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "view/widget/model_viewer.h"

namespace tarnwick::view {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr QSize FirstSize(1040, 720);
constexpr int NextWindowAside = 32;  // pixels that a further window stands right of and below the one before

QStringList ModelsOf(const QStringList& paths) {
  QStringList models;
  for (const QString& path : paths) {
    if (path.endsWith(".mdl", Qt::CaseInsensitive) || path.endsWith(".smd", Qt::CaseInsensitive)) models << path;
  }
  return models;
}

QStringList ModelsOf(const QMimeData& data) {
  QStringList paths;
  for (const std::string& path : platform::FilesOf(data).Paths) paths << ToQt(path);
  return ModelsOf(paths);
}

}  // namespace

ModelWindow::ModelWindow(platform::Desktop& desktop, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      m_desktop(desktop),
      m_viewer(new ModelViewer(desktop, ModelViewer::Controls::Beside)) {
  if (parent == nullptr) setAttribute(Qt::WA_DeleteOnClose);
  setAcceptDrops(true);
  setWindowTitle("Model Viewer");
  setWindowIcon(platform::IconOf("model"));
  m_viewer->SetEmptyText("Drop a model (.mdl) or a mesh (.smd) here, or open one with Ctrl+O");
  setCentralWidget(m_viewer);
  m_viewer->setContentsMargins(6, 6, 6, 6);
  MakeMenus();
  resize(FirstSize);
  platform::FitOnScreen(*this);
  m_viewer->View().setFocus();
}

void ModelWindow::MakeMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  const auto add = [this, file](const QString& text, const QKeySequence& key, const std::function<void()>& act) {
    QAction* action = file->addAction(text);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, act);
    return action;
  };
  add("&Open...", QKeySequence::Open, [this] { ChooseFile(); });
  m_contentAction = add("&Game Content...", QKeySequence("Ctrl+G"), [this] { m_browse(*this); });
  m_contentAction->setEnabled(false);
  m_contentAction->setVisible(false);
  add("&New Window", QKeySequence::New, [this] { Another()->show(); });
  add("&Read Again", QKeySequence::Refresh, [this] { m_viewer->Reload(); });
  file->addSeparator();
  add("Save &Picture...", QKeySequence("Ctrl+Shift+S"), [this] { m_viewer->SavePicture(); });
  file->addSeparator();
  add("&Close", QKeySequence::Close, [this] { close(); });
  QMenu* view = m_viewer->View().Commands();
  view->setTitle("&View");
  menuBar()->addMenu(view);
}

void ModelWindow::Open(const QString& path, const QString& gameDirectory) {
  m_gameDirectory = gameDirectory;
  m_viewer->ShowFile(path, gameDirectory);
  setWindowTitle(path.isEmpty() ? "Model Viewer" : QFileInfo(path).fileName() + " - Model Viewer");
  setWindowFilePath(path);
}

void ModelWindow::OfferContent(const std::function<void(ModelWindow& window)>& browse) {
  m_browse = browse;
  m_contentAction->setEnabled(m_browse != nullptr);
  m_contentAction->setVisible(m_browse != nullptr);
  if (!m_browse) return;
  m_viewer->SetEmptyText(
      "Drop a model (.mdl) or a mesh (.smd) here, or open one with Ctrl+O, or one of the game with Ctrl+G");
}

ModelWindow* ModelWindow::Another() {
  auto* window = new ModelWindow(m_desktop, parentWidget());
  if (m_browse) window->OfferContent(m_browse);
  window->Open({}, m_gameDirectory);
  window->move(pos() + QPoint(NextWindowAside, NextWindowAside));
  platform::KeepOnScreen(*window);
  return window;
}

size_t ModelWindow::OpenAll(const QStringList& paths) {
  const QStringList models = ModelsOf(paths);
  for (const QString& path : models) {
    ModelWindow* window = &path == &models.front() ? this : Another();
    window->Open(path, m_gameDirectory);
    window->show();
  }
  return static_cast<size_t>(models.size());
}

void ModelWindow::ChooseFile() {
  const auto chosen = m_desktop.ChooseFilesToOpen(
      this, {.Title = "Name of Model",
             .Filter = "Models and Meshes (*.mdl, *.smd)|*.mdl;*.smd|All Files (*.*)|*|",
             .StartName = FromQt(m_viewer->File()),
             .StartDirectory = m_gameDirectory.isEmpty() ? std::string() : FromQt(m_gameDirectory) + "/models"});
  if (!chosen) return;
  QStringList paths;
  for (const std::string& path : *chosen) paths << ToQt(path);
  OpenAll(paths);
}

void ModelWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!ModelsOf(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void ModelWindow::dropEvent(QDropEvent* event) {
  OpenAll(ModelsOf(*event->mimeData()));
  event->acceptProposedAction();
}

}  // namespace tarnwick::view
