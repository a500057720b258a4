#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

class QWidget;

namespace tarnwick::pages {

/// Colours the text of a model's sources: commands, strings, numbers and comments of a script, section words of an SMD
/// or VTA file. The colours come from the palette of `owner`, whatever that is or becomes.
class SourceHighlighter : public QSyntaxHighlighter {
  Q_OBJECT

 public:
  enum class Language { None, Script, Smd };

  SourceHighlighter(QTextDocument* document, QWidget& owner);

  void SetLanguage(Language language);
  /// What the ending of `path` tells.
  static Language LanguageOf(const QString& path);

 protected:
  void highlightBlock(const QString& text) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void TakeColors();
  void HighlightScript(const QString& text);
  void HighlightSmd(const QString& text);

  QWidget& m_owner;
  Language m_language = Language::None;
  QTextCharFormat m_command;
  QTextCharFormat m_string;
  QTextCharFormat m_number;
  QTextCharFormat m_comment;
};

}  // namespace tarnwick::pages
