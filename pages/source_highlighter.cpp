#include "pages/source_highlighter.h"

#include <QEvent>
#include <QWidget>
#include <algorithm>

namespace tarnwick::pages {

namespace {

constexpr int InComment = 1;  // state of a line that ends within a comment

bool IsWordEnd(QChar c) {
  return c.isSpace() || c == '"' || c == '{' || c == '}';
}

bool IsNumber(QStringView word) {
  bool isNumber = false;
  static_cast<void>(word.toDouble(&isNumber));
  return isNumber;
}

/// Halfway between the colour and what it stands on, for what should stand back.
QColor Mixed(const QColor& a, const QColor& b) {
  return QColor((a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2);
}

}  // namespace

SourceHighlighter::SourceHighlighter(QTextDocument* document, QWidget& owner)
    : QSyntaxHighlighter(document), m_owner(owner) {
  owner.installEventFilter(this);
  TakeColors();
}

void SourceHighlighter::TakeColors() {
  const QPalette palette = m_owner.palette();
  const bool isDark = palette.color(QPalette::Base).lightness() < 128;
  m_command.setForeground(isDark ? QColor(120, 175, 255) : QColor(20, 70, 170));
  m_command.setFontWeight(QFont::Bold);
  m_string.setForeground(isDark ? QColor(150, 210, 140) : QColor(30, 110, 40));
  m_number.setForeground(isDark ? QColor(230, 180, 120) : QColor(140, 70, 0));
  m_comment.setForeground(Mixed(palette.color(QPalette::Text), palette.color(QPalette::Base)));
  m_comment.setFontItalic(true);
}

SourceHighlighter::Language SourceHighlighter::LanguageOf(const QString& path) {
  const auto ends = [&](const char* ending) { return path.endsWith(ending, Qt::CaseInsensitive); };
  if (ends(".qc") || ends(".qci")) return Language::Script;
  return ends(".smd") || ends(".vta") ? Language::Smd : Language::None;
}

void SourceHighlighter::SetLanguage(Language language) {
  m_language = language;  // the next text is coloured by it
}

bool SourceHighlighter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::PaletteChange) {
    TakeColors();
    rehighlight();
  }
  return QSyntaxHighlighter::eventFilter(watched, event);
}

void SourceHighlighter::highlightBlock(const QString& text) {
  if (m_language == Language::Script) HighlightScript(text);
  if (m_language == Language::Smd) HighlightSmd(text);
}

void SourceHighlighter::HighlightScript(const QString& text) {
  const auto length = static_cast<int>(text.size());
  setCurrentBlockState(0);
  int at = 0;
  if (previousBlockState() == InComment) {
    const auto end = static_cast<int>(text.indexOf("*/"));
    if (end < 0) {
      setFormat(0, length, m_comment);
      return setCurrentBlockState(InComment);
    }
    at = end + 2;
    setFormat(0, at, m_comment);
  }
  while (at < length) {
    const QStringView rest = QStringView(text).mid(at);
    int end = at + 1;
    if (rest.startsWith(u"//") || rest[0] == '#' || rest[0] == ';') {
      return setFormat(at, length - at, m_comment);
    }
    if (rest.startsWith(u"/*")) {
      const auto close = static_cast<int>(text.indexOf("*/", at + 2));
      end = close < 0 ? length : close + 2;
      setFormat(at, end - at, m_comment);
      if (close < 0) setCurrentBlockState(InComment);
    } else if (rest[0] == '"') {
      const auto close = static_cast<int>(text.indexOf('"', at + 1));
      end = close < 0 ? length : close + 1;
      setFormat(at, end - at, m_string);
    } else if (!IsWordEnd(rest[0])) {
      while (end < length && !IsWordEnd(text[end])) ++end;
      if (rest[0] == '$') {
        setFormat(at, end - at, m_command);
      } else if (IsNumber(QStringView(text).mid(at, end - at))) {
        setFormat(at, end - at, m_number);
      }
    }
    at = end;
  }
}

void SourceHighlighter::HighlightSmd(const QString& text) {
  const QString word = text.section(' ', 0, 0, QString::SectionSkipEmpty).trimmed();
  static const QStringList sections = {"version", "nodes", "skeleton", "triangles", "vertexanimation", "end", "time"};
  if (sections.contains(word)) {
    setFormat(static_cast<int>(text.indexOf(word)), static_cast<int>(word.size()), m_command);
  } else if (text.trimmed().startsWith("//")) {
    setFormat(0, static_cast<int>(text.size()), m_comment);
  }
}

}  // namespace tarnwick::pages
