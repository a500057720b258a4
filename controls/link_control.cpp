#include "controls/link_control.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QTextDocument>
#include <QWidget>

#include "platform/text.h"

namespace tarnwick::controls {
namespace {

/// A control with links as a screen reader sees it: its words without markup, the address as the description, and
/// opening the link as what it does.
class AccessibleLink : public QAccessibleWidget {
 public:
  AccessibleLink(QWidget* widget, LinkControl& control)
      : QAccessibleWidget(widget, control.IsOneLink() ? QAccessible::Link : QAccessible::StaticText),
        m_control(control) {}

  QAccessible::Role role() const override {
    return m_control.IsOneLink() ? QAccessible::Link : QAccessible::StaticText;
  }

  QString text(QAccessible::Text kind) const override {
    const QString given = QAccessibleWidget::text(kind);
    if (!given.isEmpty()) return given;
    if (kind == QAccessible::Name) return m_control.LinkText();
    if (kind == QAccessible::Description) return platform::ToQt(m_control.CurrentAddress());
    return given;
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.linked = !m_control.CurrentAddress().empty();
    return state;
  }

  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (!m_control.CurrentAddress().empty()) names.prepend(pressAction());
    return names;
  }

  void doAction(const QString& name) override {
    if (name == pressAction()) {
      m_control.OpenCurrentLink();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  LinkControl& m_control;
};

QAccessibleInterface* MakeAccessible(const QString&, QObject* object) {
  auto* control = dynamic_cast<LinkControl*>(object);
  if (control == nullptr) return nullptr;
  return new AccessibleLink(static_cast<QWidget*>(object), *control);
}

}  // namespace

void RegisterLinkControls() {
  static const bool registered = [] {
    QAccessible::installFactory(MakeAccessible);
    return true;
  }();
  static_cast<void>(registered);
}

QString PlainToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

}  // namespace tarnwick::controls
