#include "window_support/window_actions.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QTimer>
#include <QUrl>

namespace tarnwick::tests {

void Click(QWidget& window, const char* button) {
  QTest::mouseClick(&ControlOf<QAbstractButton>(window, button), Qt::LeftButton);
}

void Drop(QWidget& target, const std::vector<std::string>& paths) {
  QMimeData data;
  QList<QUrl> urls;
  for (const std::string& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
  data.setUrls(urls);
  const QPoint point = target.rect().center();
  QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&target, &enter);
  QDropEvent drop(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&target, &drop);
}

std::string Dropped(const std::string& path) {
  return QDir::toNativeSeparators(QString::fromStdString(path)).toStdString();
}

bool WaitUntil(const std::function<bool()>& condition) {
  return QTest::qWaitFor(condition, 60'000);
}

void WhenModalOpens(const std::function<void(QWidget& dialog)>& answer) {
  QTimer::singleShot(0, [answer] {
    if (QWidget* dialog = QApplication::activeModalWidget()) return answer(*dialog);
    ADD_FAILURE() << "no dialog opened";
  });
}

QColor ColorOfLine(const QPlainTextEdit& box, const char* start) {
  for (QTextBlock block = box.document()->begin(); block.isValid(); block = block.next()) {
    if (!block.text().startsWith(start)) continue;
    const auto formats = block.layout()->formats();
    return formats.empty() ? QColor() : formats.front().format.foreground().color();
  }
  ADD_FAILURE() << "no line begins with " << start;
  return {};
}

}  // namespace tarnwick::tests
