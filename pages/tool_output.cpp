#include "pages/tool_output.h"

#include <QFontDatabase>
#include <QSyntaxHighlighter>

#include "controls/painting.h"
#include "controls/readable_color.h"
#include "platform/text.h"
#include "tools/output_lines.h"

namespace tarnwick::pages {

namespace {

/// Colours each line by what it tells.
class LineColors : public QSyntaxHighlighter {
 public:
  explicit LineColors(QPlainTextEdit& box) : QSyntaxHighlighter(box.document()), m_box(box) {}

 protected:
  void highlightBlock(const QString& text) override {
    const tools::LineKind kind = tools::ClassifyLine(platform::FromQt(text));
    if (kind == tools::LineKind::Plain) return;
    QTextCharFormat format;
    format.setForeground(Readable(kind == tools::LineKind::Error ? QColor(192, 0, 0) : QColor(150, 90, 0)));
    if (kind == tools::LineKind::Error) format.setFontWeight(QFont::Bold);
    setFormat(0, static_cast<int>(text.size()), format);
  }

 private:
  QColor Readable(const QColor& color) const {
    const QColor background = m_box.palette().color(QPalette::Base);
    return controls::ToQt(controls::ReadableOn(controls::FromQt(color), controls::FromQt(background)));
  }

  QPlainTextEdit& m_box;
};

}  // namespace

CToolOutput::CToolOutput(QWidget* parent) : CLogView(parent) {
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  new LineColors(*this);
}

void CToolOutput::ShowText(const std::string& text) {
  if (text.size() <= m_shown) return;
  Append(std::string_view(text).substr(m_shown));
  m_shown = text.size();
}

void CToolOutput::Clear() {
  m_shown = 0;
  CLogView::Clear();
}

}  // namespace tarnwick::pages
