#pragma once

#include <QPlainTextEdit>
#include <QStringDecoder>
#include <string_view>

namespace tarnwick::pages {

/// A box for text that grows: new text is added at its end, which stays in sight unless the user has scrolled away
/// from it. The box keeps the last `KeptLines` lines, or as many as it is told to, however much comes.
class CLogView : public QPlainTextEdit {
  Q_OBJECT

 public:
  static constexpr int KeptLines = 20'000;

  explicit CLogView(QWidget* parent = nullptr);

  /// Adds `text`: UTF-8 that may end within a character; carriage returns are left out.
  void Append(std::string_view text);
  /// Has the box keep that many lines from here on.
  void KeepLines(int count);
  /// Empties the box; its end is in sight again.
  void Clear();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void SeeWhetherTheUserScrolled();
  void KeepEndInSight();

  int m_keptLines = KeptLines;
  bool m_followsEnd = true;
  int m_leftAt = 0;  // where the bar stood when this class last moved it
  QStringDecoder m_decoder{QStringDecoder::Utf8};
};

}  // namespace tarnwick::pages
