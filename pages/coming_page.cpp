#include "pages/coming_page.h"

#include <QLabel>
#include <QVBoxLayout>

namespace tarnwick::pages {

void ShowComingLater(QWidget& page, const char* what) {
  auto* label = new QLabel(QString("%1 comes with a later version.").arg(what), &page);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  auto* layout = new QVBoxLayout(&page);
  layout->addWidget(label);
}

}  // namespace tarnwick::pages
