#include "platform/qt_desktop.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>
#include <algorithm>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

#include "core/paths.h"
#include "core/report.h"
#include "platform/editor.h"
#include "platform/native_path.h"
#include "platform/text.h"

namespace tarnwick::platform {

namespace {

QMessageBox::Icon QtIcon(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Stop:
      return QMessageBox::Critical;
    case BoxIcon::Exclamation:
      return QMessageBox::Warning;
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::Question:
      return QMessageBox::Question;
    case BoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons QtButtons(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case BoxButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case BoxButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

QString QtPath(const std::string& path) {
  return ToQt(core::PathText(core::NativePath(path)));
}

/// Opens the chooser's dialog and gives what was chosen; empty on cancel.
QStringList Choose(QWidget* owner, const FileRequest& request, QFileDialog::AcceptMode accept,
                   QFileDialog::FileMode mode) {
  QFileDialog dialog(owner);
  dialog.setAcceptMode(accept);
  dialog.setFileMode(mode);
  if (!request.Title.empty()) dialog.setWindowTitle(ToQt(request.Title));
  QStringList filters;
  for (const std::string& filter : NameFilters(request.Filter)) filters << ToQt(filter);
  if (!filters.isEmpty()) dialog.setNameFilters(filters);

  const QFileInfo start(QtPath(request.StartName));
  const bool namesDirectory = !request.StartName.empty() && start.absoluteDir().exists() && start.isAbsolute();
  if (namesDirectory) {
    dialog.setDirectory(start.absoluteDir());
  } else if (!request.StartDirectory.empty() && QFileInfo(QtPath(request.StartDirectory)).isDir()) {
    dialog.setDirectory(QtPath(request.StartDirectory));
  }
  if (!request.StartName.empty()) dialog.selectFile(namesDirectory ? start.absoluteFilePath() : start.fileName());
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

std::optional<std::string> First(const QStringList& files) {
  if (files.isEmpty()) return std::nullopt;
  return PathFromQt(files.front());
}

constexpr int DetailsWidth = 460;  // pixels of a line of details, at most

/// The box would be as narrow as its heading, with a path below it broken into pieces.
void MakeRoomForDetails(QMessageBox& box) {
  auto* const label = box.findChild<QLabel*>("qt_msgbox_informativelabel");
  if (label == nullptr) return;
  const int wanted = label->fontMetrics().size(Qt::TextExpandTabs, label->text()).width();
  label->setMinimumWidth(std::min(wanted, DetailsWidth));
}

}  // namespace

std::vector<std::string> NameFilters(const std::string& pairs) {
  std::vector<std::string> filters;
  const QStringList parts = ToQt(pairs).split('|');
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString label = parts[i].trimmed();
    if (label.endsWith(')') && label.contains('(')) label = label.left(label.lastIndexOf('(')).trimmed();
    filters.push_back(FromQt(QString("%1 (%2)").arg(label, QString(parts[i + 1]).replace(';', ' '))));
  }
  return filters;
}

BoxAnswer QtDesktop::ShowBox(QWidget* owner, const MessageBoxRequest& request) {
  QMessageBox box(owner);
  box.setTextFormat(Qt::PlainText);
  box.setText(ToQt(request.Text).replace("\r\n", "\n"));
  box.setWindowTitle(ToQt(request.Caption.empty() ? core::DefaultCaption : std::string_view(request.Caption)));
  box.setIcon(QtIcon(request.Icon));
  box.setStandardButtons(QtButtons(request.Buttons));
  box.setInformativeText(ToQt(request.Details));
  MakeRoomForDetails(box);
  if (!request.OkLabel.empty()) box.button(QMessageBox::Ok)->setText(ToQt(request.OkLabel));
  if (request.RefusalIsDefault && request.Buttons != BoxButtons::Ok) {
    box.setDefaultButton(request.Buttons == BoxButtons::YesNo ? QMessageBox::No : QMessageBox::Cancel);
  }
  box.setTextInteractionFlags(Qt::TextSelectableByMouse);
  switch (box.exec()) {
    case QMessageBox::Ok:
      return BoxAnswer::Ok;
    case QMessageBox::Yes:
      return BoxAnswer::Yes;
    case QMessageBox::No:
      return BoxAnswer::No;
    default:
      break;
  }
  if (request.Buttons == BoxButtons::Ok) return BoxAnswer::Ok;
  return request.Buttons == BoxButtons::YesNo ? BoxAnswer::No : BoxAnswer::Cancel;
}

std::optional<std::string> QtDesktop::ChooseFileToOpen(QWidget* owner, const FileRequest& request) {
  return First(Choose(owner, request, QFileDialog::AcceptOpen, QFileDialog::ExistingFile));
}

std::optional<std::vector<std::string>> QtDesktop::ChooseFilesToOpen(QWidget* owner, const FileRequest& request) {
  const QStringList chosen = Choose(owner, request, QFileDialog::AcceptOpen, QFileDialog::ExistingFiles);
  if (chosen.isEmpty()) return std::nullopt;
  std::vector<std::string> files;
  for (const QString& file : chosen) files.push_back(PathFromQt(file));
  return files;
}

std::optional<std::string> QtDesktop::ChooseFileToSave(QWidget* owner, const FileRequest& request) {
  return First(Choose(owner, request, QFileDialog::AcceptSave, QFileDialog::AnyFile));
}

std::optional<std::string> QtDesktop::ChooseFolder(QWidget* owner, const std::string& title,
                                                   const std::string& startDirectory) {
  const QString folder = QFileDialog::getExistingDirectory(owner, ToQt(title), QtPath(startDirectory));
  if (folder.isEmpty()) return std::nullopt;
  return PathFromQt(folder);
}

bool QtDesktop::Open(const std::string& addressOrPath) {
  const QString path = QtPath(addressOrPath);
  if (QFileInfo::exists(path)) return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
  return QDesktopServices::openUrl(QUrl(ToQt(addressOrPath), QUrl::TolerantMode));
}

bool QtDesktop::OpenInNewWindow(const std::string& addressOrPath) {
#ifdef _WIN32
  const auto text = ToQt(addressOrPath).toStdWString();
  // Anything above 32 is success.
  return reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, L"new", text.c_str(), nullptr, nullptr, SW_SHOW)) > 32;
#else
  return Open(addressOrPath);  // the handlers know only one way to open
#endif
}

EditStart QtDesktop::Edit(const std::string& path) {
  const QString native = QtPath(path);
  if (!QFileInfo(native).isFile()) return EditStart::NoFile;
  const bool begun = StartEditor(native) || QDesktopServices::openUrl(QUrl::fromLocalFile(native)) ||
                     StartSystemEditor(QDir::toNativeSeparators(native));
  return begun ? EditStart::Begun : EditStart::NoEditor;
}

}  // namespace tarnwick::platform
