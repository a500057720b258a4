#include "view/widget/model_window.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>

#include "platform/bitmap_button.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "view/widget/model_viewer.h"

namespace tarnwick::view {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr QSize FirstSize(1040, 720);
constexpr int NextWindowAside = 32;  // pixels that a further window stands right of and below the one before

QStringList ModelsOf(const QMimeData& data) {
  QStringList models;
  for (const QUrl& url : data.urls()) {
    const QString path = url.toLocalFile();
    if (path.endsWith(".mdl", Qt::CaseInsensitive) || path.endsWith(".smd", Qt::CaseInsensitive)) models << path;
  }
  return models;
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
  };
  add("&Open...", QKeySequence::Open, [this] { ChooseFile(); });
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

ModelWindow* ModelWindow::Another() {
  auto* window = new ModelWindow(m_desktop, parentWidget());
  window->Open({}, m_gameDirectory);
  window->move(pos() + QPoint(NextWindowAside, NextWindowAside));
  platform::KeepOnScreen(*window);
  return window;
}

void ModelWindow::OpenAll(const QStringList& paths) {
  for (const QString& path : paths) {
    ModelWindow* window = &path == &paths.front() ? this : Another();
    window->Open(path, m_gameDirectory);
    window->show();
  }
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
