#include "pages/page.h"

#include <QBoxLayout>
#include <QPushButton>

#include "core/settings_table.h"
#include "jobs/input_content.h"

namespace tarnwick::pages {

namespace {

/// The row that `button` stands in, in `layout` or below it.
QBoxLayout* RowOf(QLayout* layout, QWidget& button) {
  if (layout == nullptr) return nullptr;
  for (int i = 0; i < layout->count(); ++i) {
    if (layout->itemAt(i)->widget() == &button) return qobject_cast<QBoxLayout*>(layout);
    if (QBoxLayout* row = RowOf(layout->itemAt(i)->layout(), button); row != nullptr) return row;
  }
  return nullptr;
}

}  // namespace

CPage::CPage(const PageContext& context, QWidget* parent)
    : CDialog(context.Desktop, parent, Style::Page), m_context(context) {}

void CPage::SaveSettings() {}

size_t CPage::OpenFiles(const std::vector<std::string>&) {
  return 0;
}

void CPage::AddContentButton(QAbstractButton& openButton, const QString& caption,
                             std::optional<archives::ContentKind> kind) {
  QBoxLayout* const row = RowOf(openButton.parentWidget()->layout(), openButton);
  if (row == nullptr || !m_context.BrowseContent) return;
  auto* button = new QPushButton(caption, openButton.parentWidget());
  button->setObjectName("contentButton");
  button->setToolTip("Look for files in the game's folders and archives");
  button->setAutoDefault(false);
  row->insertWidget(row->indexOf(&openButton) + 1, button);
  setTabOrder(&openButton, button);
  connect(button, &QAbstractButton::clicked, this, [this, kind] { m_context.BrowseContent(*this, kind); });
}

std::shared_ptr<jobs::InputContent> CPage::NewContent() const {
  return std::make_shared<jobs::InputContent>(core::setting::GameDirectory.Read(m_context.Settings));
}

}  // namespace tarnwick::pages
