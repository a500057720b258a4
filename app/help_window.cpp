#include "app/help_window.h"

#include <QComboBox>
#include <array>

#include "app/document_view.h"
#include "platform/text.h"
#include "ui_help_window.h"

// Outside every namespace, as the macro demands: a static library's resources are not there until this is called.
static void InitDocuments() {
  Q_INIT_RESOURCE(documents);
}

namespace tarnwick::app {

namespace {

struct Document {
  const char* Title;
  const char* Name;
};

constexpr std::array<Document, 5> Documents = {{{"The window", "window.md"},
                                                {"Materials and textures", "materials.md"},
                                                {"The SDK's tools", "running-tools.md"},
                                                {"The program's own tools", "sdk-tools.md"},
                                                {"The command line", "command-line.md"}}};

QUrl AddressOf(const Document& document) {
  return QUrl(QString("qrc:/documents/") + document.Name);
}

}  // namespace

CHelpWindow::CHelpWindow(platform::Desktop& desktop, QWidget* parent, std::function<void()> openWebPage)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::HelpWindow>()) {
  InitDocuments();
  m_ui->setupUi(this);
  for (const Document& document : Documents) m_ui->documentCombo->addItem(document.Title);
  m_ui->documentView->setOpenLinks(false);
  connect(m_ui->documentCombo, &QComboBox::activated, this, &CHelpWindow::OpenDocument);
  connect(m_ui->documentView, &QTextBrowser::sourceChanged, this, &CHelpWindow::FollowDocument);
  connect(m_ui->documentView, &QTextBrowser::backwardAvailable, m_ui->backButton, &QWidget::setEnabled);
  connect(m_ui->documentView, &QTextBrowser::anchorClicked, this, &CHelpWindow::OnLink);
  connect(m_ui->backButton, &QAbstractButton::clicked, m_ui->documentView, &QTextBrowser::backward);
  connect(m_ui->webButton, &QAbstractButton::clicked, this, std::move(openWebPage));
  connect(m_ui->closeButton, &QAbstractButton::clicked, this, &QDialog::reject);
}

CHelpWindow::~CHelpWindow() = default;

void CHelpWindow::ShowAt(const std::string& heading) {
  Create();
  show();  // before the document, so that its pictures know how wide they may be
  raise();
  activateWindow();
  OpenDocument(0);
  m_ui->documentView->GoToHeading(platform::ToQt(heading));
}

void CHelpWindow::OpenDocument(int index) {
  m_ui->documentView->setSource(AddressOf(Documents[static_cast<size_t>(index)]));
}

void CHelpWindow::FollowDocument(const QUrl& source) {
  for (size_t i = 0; i < Documents.size(); ++i) {
    if (AddressOf(Documents[i]) == source.adjusted(QUrl::RemoveFragment)) {
      m_ui->documentCombo->setCurrentIndex(static_cast<int>(i));
    }
  }
}

void CHelpWindow::OnLink(const QUrl& address) {
  const QUrl whole = m_ui->documentView->source().resolved(address);
  if (whole.scheme() == "qrc") return m_ui->documentView->setSource(whole);
  if (DesktopSeam().Open(platform::FromQt(whole.toString()))) return;
  DesktopSeam().Box(this, platform::BoxIcon::Stop, "Unable to open " + platform::FromQt(whole.toString()), "Error");
}

}  // namespace tarnwick::app
