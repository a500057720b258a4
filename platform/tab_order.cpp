#include "platform/tab_order.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <memory>
#include <vector>

namespace tarnwick::platform {

namespace {

using Widgets = std::vector<QWidget*>;

void Collect(QWidget& widget, Widgets& order);

void Collect(QLayout& layout, Widgets& order) {
  for (int i = 0; i < layout.count(); ++i) {
    QLayoutItem* item = layout.itemAt(i);
    if (QWidget* widget = item->widget()) Collect(*widget, order);
    if (QLayout* inner = item->layout()) Collect(*inner, order);
  }
}

void Collect(QWidget& widget, Widgets& order) {
  if (const auto* tabs = qobject_cast<QTabWidget*>(&widget)) {
    order.push_back(tabs->tabBar());
    for (int i = 0; i < tabs->count(); ++i) Collect(*tabs->widget(i), order);
  } else if (const auto* splitter = qobject_cast<QSplitter*>(&widget)) {
    for (int i = 0; i < splitter->count(); ++i) Collect(*splitter->widget(i), order);
  } else if (const auto* area = qobject_cast<QScrollArea*>(&widget); area != nullptr && area->widget() != nullptr) {
    Collect(*area->widget(), order);
  } else {
    if (widget.focusPolicy() != Qt::NoFocus) order.push_back(&widget);
    // What a control is made of is its own matter.
    const bool isForm = qobject_cast<QAbstractScrollArea*>(&widget) == nullptr;
    if (isForm && widget.layout() != nullptr) Collect(*widget.layout(), order);
  }
}

bool IsField(const QWidget& widget) {
  if (const auto* line = qobject_cast<const QLineEdit*>(&widget)) return !line->isReadOnly();
  if (const auto* text = qobject_cast<const QPlainTextEdit*>(&widget)) return !text->isReadOnly();
  return qobject_cast<const QComboBox*>(&widget) != nullptr || qobject_cast<const QCheckBox*>(&widget) != nullptr ||
         qobject_cast<const QRadioButton*>(&widget) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr;
}

}  // namespace

bool MoveFocus(QWidget& window, bool next) {
  Widgets order;
  if (window.layout() != nullptr) Collect(*window.layout(), order);
  const QWidget* focus = window.focusWidget();
  const auto hasFocus = [focus](const QWidget* widget) {
    return widget == focus || widget->focusProxy() == focus || (focus != nullptr && widget->isAncestorOf(focus));
  };
  std::erase_if(order, [&](const QWidget* widget) {
    const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isEnabled();
    return !hasFocus(widget) && (!takesTab || !widget->isVisibleTo(&window));
  });
  const auto place = std::find_if(order.begin(), order.end(), hasFocus);
  if (place == order.end() || order.size() < 2) return false;
  const size_t step = next ? 1 : order.size() - 1;
  QWidget* target = order[(static_cast<size_t>(place - order.begin()) + step) % order.size()];
  target->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  BringIntoSight(*target);
  return true;
}

void BringIntoSight(QWidget& control) {
  for (QWidget* outer = control.parentWidget(); outer != nullptr; outer = outer->parentWidget()) {
    if (auto* area = qobject_cast<QScrollArea*>(outer)) area->ensureWidgetVisible(&control);
  }
}

QWidget* FirstField(QWidget& window) {
  Widgets order;
  Collect(window, order);
  for (QWidget* widget : order) {
    if (IsField(*widget) && widget->isEnabled() && widget->isVisibleTo(&window)) return widget;
  }
  return nullptr;
}

void KeepFocusInTabs(QTabWidget& tabs) {
  const auto lost = std::make_shared<bool>(false);  // whether what had the focus has gone out of sight with its page
  QObject::connect(qApp, &QApplication::focusChanged, &tabs, [&tabs, lost](const QWidget* old, const QWidget*) {
    *lost = *lost || (old != nullptr && tabs.isAncestorOf(old) && !old->isVisibleTo(&tabs));
  });
  const auto clicked = std::make_shared<bool>(false);
  QObject::connect(&tabs, &QTabWidget::tabBarClicked, &tabs,
                   [&tabs, clicked](int tab) { *clicked = tab >= 0 && tab != tabs.currentIndex(); });
  QObject::connect(&tabs, &QTabWidget::currentChanged, &tabs, [&tabs, lost, clicked] {
    QWidget* const page = tabs.currentWidget();
    const QWidget* const now = tabs.window()->focusWidget();
    const bool isInPage = page == nullptr || (now != nullptr && now != page && page->isAncestorOf(now));
    const bool wantsFocus = *lost || *clicked;
    *lost = *clicked = false;
    if (!wantsFocus || isInPage) return;
    if (QWidget* const first = FirstField(*page)) first->setFocus(Qt::OtherFocusReason);
  });
}

}  // namespace tarnwick::platform
