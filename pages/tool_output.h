#pragma once

#include <QPlainTextEdit>
#include <QStringDecoder>
#include <string>

namespace tarnwick::pages {

/// A box for what a console tool prints: lines that tell errors and warnings stand out, and while text is added the
/// end stays in sight unless the user has scrolled away from it.
class CToolOutput : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit CToolOutput(QWidget* parent = nullptr);

  /// Shows `text`, which is what was shown before and what has been added to it since, or a new text after `Clear`.
  /// It is UTF-8 and may end within a character.
  void ShowText(const std::string& text);
  void Clear();

 private:
  size_t m_shown = 0;  // bytes of the text that stand in the box
  QStringDecoder m_decoder{QStringDecoder::Utf8};
};

}  // namespace tarnwick::pages
