#include "platform/bitmap_button.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QStyle>

// Outside every namespace, as the macro demands: a static library's resources are not there until this is called.
static void InitResources() {
  Q_INIT_RESOURCE(tarnwick);
}

namespace tarnwick::platform {

namespace {

struct UsualTooltip {
  const char* Stem;
  const char* Text;
};

constexpr UsualTooltip UsualTooltips[] = {
    {"IDB_COMPILE", "Compile"},         {"IDB_EDIT", "Show and edit the reference SMD"},
    {"IDB_EDITQC", "Edit the QC file"}, {"IDB_HELP", "What is this?"},
    {"IDB_LOAD", "Load a project"},     {"IDB_OPEN", "Browse"},
    {"IDB_OPTIONS", "Options"},         {"IDB_SAVE", "Save the project"},
    {"IDB_SAVEF", "Choose a folder"},   {"IDB_VIEW", "View the compiled model"},
};

}  // namespace

QIcon IconOf(const QString& stem) {
  InitResources();
  const QString path = QString(":/icons/%1.svg").arg(stem);
  if (QFile::exists(path)) return QIcon(path);
  // Where Qt has no reader of SVG files the build has made pictures of them, for every scale of a screen.
  QIcon icon;
  const QDir pictures(":/icons/" + stem);
  for (const QString& name : pictures.entryList()) icon.addFile(pictures.filePath(name));
  return icon;
}

void LoadCaptionBitmaps(QAbstractButton& button) {
  const QString stem = button.text().section('|', 0, 0);
  const QIcon icon = IconOf(stem);
  if (icon.isNull()) return;  // the caption stays: better a name than an empty button
  button.setProperty("stem", stem);
  button.setText(button.text().section('|', 1));
  button.setIcon(icon);
  if (button.text().isEmpty()) {  // beside words a picture has their size
    const int size = button.style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, &button) * 3 / 4;
    button.setIconSize(QSize(size, size));
  }
  if (button.toolTip().isEmpty()) {
    for (const UsualTooltip& usual : UsualTooltips) {
      if (stem == usual.Stem) button.setToolTip(usual.Text);
    }
  }
  if (button.accessibleName().isEmpty()) button.setAccessibleName(button.toolTip());
}

void LoadAllCaptionBitmaps(QWidget& parent) {
  for (QAbstractButton* button : parent.findChildren<QAbstractButton*>()) {
    if (button->text().startsWith("IDB_")) LoadCaptionBitmaps(*button);
  }
}

}  // namespace tarnwick::platform
