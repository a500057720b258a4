#include "pages/log_view.h"

#include <QScrollBar>

namespace tarnwick::pages {

namespace {

/// The last `count` lines of `text`; all if it has no more.
QStringView LastLines(const QString& text, int count) {
  qsizetype at = text.size();
  for (int i = 0; i <= count; ++i) {
    if (at <= 0) return text;
    at = text.lastIndexOf('\n', at - 1);
    if (at < 0) return text;
  }
  return QStringView(text).mid(at + 1);
}

}  // namespace

CLogView::CLogView(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setLineWrapMode(NoWrap);
  setTabChangesFocus(true);
  setUndoRedoEnabled(false);
  setMaximumBlockCount(KeptLines);
}

void CLogView::Append(std::string_view text) {
  QString added = m_decoder(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
  added.remove('\r');
  SeeWhetherTheUserScrolled();
  QTextCursor end(document());
  end.movePosition(QTextCursor::End);
  end.insertText(LastLines(added, m_keptLines).toString());
  KeepEndInSight();
}

void CLogView::KeepLines(int count) {
  m_keptLines = count;
  setMaximumBlockCount(count);
}

void CLogView::Clear() {
  m_decoder.resetState();
  clear();
  m_followsEnd = true;
  KeepEndInSight();
}

void CLogView::resizeEvent(QResizeEvent* event) {
  SeeWhetherTheUserScrolled();
  QPlainTextEdit::resizeEvent(event);
  KeepEndInSight();
}

// The bar's signals do not tell: the view blocks them while it moves the bar, and moves it itself as lines come.
void CLogView::SeeWhetherTheUserScrolled() {
  const QScrollBar& bar = *verticalScrollBar();
  if (bar.value() == bar.maximum()) {
    m_followsEnd = true;
  } else if (bar.value() != m_leftAt) {
    m_followsEnd = false;
  }
}

void CLogView::KeepEndInSight() {
  QScrollBar& bar = *verticalScrollBar();
  if (m_followsEnd) bar.setValue(bar.maximum());
  m_leftAt = bar.value();
}

}  // namespace tarnwick::pages
