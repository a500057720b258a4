#pragma once

#include <QTextBrowser>

namespace tarnwick::app {

/// A text browser whose pictures are no wider than itself.
class CDocumentView : public QTextBrowser {
  Q_OBJECT

 public:
  using QTextBrowser::QTextBrowser;

  /// Brings the heading with that text to the top; false, and the start is shown, if the document has none.
  bool GoToHeading(const QString& heading);

  QVariant loadResource(int type, const QUrl& name) override;
};

}  // namespace tarnwick::app
