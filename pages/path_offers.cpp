#include "pages/path_offers.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QStringListModel>
#include <algorithm>

#include "platform/text.h"

namespace tarnwick::pages {

namespace {

/// Watches the list that opens below a box.
class OffersList : public QObject {
 public:
  OffersList(QAbstractItemView& list, QLineEdit& box) : QObject(&list), m_list(list), m_box(box) {
    list.setTextElideMode(Qt::ElideMiddle);  // paths differ at their end
    list.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Show || event->type() == QEvent::Resize) Widen();
    return event->type() == QEvent::KeyPress && TakeEnter(*static_cast<QKeyEvent*>(event));
  }

 private:
  void Widen() {
    const int wanted =
        m_list.sizeHintForColumn(0) + 2 * m_list.frameWidth() + m_list.verticalScrollBar()->sizeHint().width();
    const int room = m_list.screen()->availableGeometry().right() + 1 - m_list.x();
    m_list.setMinimumWidth(std::min(wanted, room));  // it is placed anew, as wide as the box, at each letter
  }

  /// The list would take Enter for itself: what was typed whole would have to be entered twice.
  bool TakeEnter(const QKeyEvent& event) {
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (!isEnter || m_list.currentIndex().isValid()) return false;
    m_list.hide();
    QCoreApplication::postEvent(&m_box, new QKeyEvent(event.type(), event.key(), event.modifiers(), event.text()));
    return true;
  }

  QAbstractItemView& m_list;
  QLineEdit& m_box;
};

}  // namespace

void OfferPaths(QLineEdit& box, const std::vector<std::string>& paths) {
  QStringList offered;
  for (const std::string& path : paths) offered << platform::ToQt(path);
  if (box.completer() == nullptr) {
    auto* completer = new QCompleter(&box);
    completer->setModel(new QStringListModel(completer));
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    box.setCompleter(completer);
    new OffersList(*completer->popup(), box);
  }
  static_cast<QStringListModel*>(box.completer()->model())->setStringList(offered);
}

}  // namespace tarnwick::pages
