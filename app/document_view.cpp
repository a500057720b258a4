#include "app/document_view.h"

#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>

namespace tarnwick::app {

namespace {

constexpr int LeastPictureWidth = 200;  // pixels
constexpr int Margins = 40;             // of the text and the scroll bar

}  // namespace

bool CDocumentView::GoToHeading(const QString& heading) {
  verticalScrollBar()->setValue(0);
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0 || block.text() != heading) continue;
    const QTextCursor end(document()->lastBlock());
    setTextCursor(end);  // so that coming back to the heading puts it at the top
    setTextCursor(QTextCursor(block));
    return true;
  }
  return false;
}

QVariant CDocumentView::loadResource(int type, const QUrl& name) {
  QVariant loaded = QTextBrowser::loadResource(type, name);
  if (type != QTextDocument::ImageResource) return loaded;
  const QImage picture = QImage::fromData(loaded.toByteArray());
  const int room = std::max(viewport()->width() - Margins, LeastPictureWidth);
  if (picture.isNull() || picture.width() <= room) return picture;
  return picture.scaledToWidth(room, Qt::SmoothTransformation);
}

}  // namespace tarnwick::app
