#include "pages/sources_view.h"

#include <QCheckBox>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/byte_size.h"
#include "core/paths.h"
#include "pages/source_highlighter.h"
#include "platform/native_path.h"
#include "platform/text.h"
#include "view/widget/model_view.h"

namespace tarnwick::pages {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr int FileColumn = 0;
constexpr int SizeColumn = 1;
constexpr int PathRole = Qt::UserRole;
constexpr qint64 MostText = 2 << 20;  // bytes of a file that are shown as text

bool IsMesh(const QString& path) {
  return path.endsWith(".smd", Qt::CaseInsensitive);
}

/// The beginning of a file as text, and a line that says what is left out or wrong.
QString ReadText(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return path + " cannot be read: " + file.errorString();
  QString text = ToQt(file.read(MostText).toStdString());
  text.remove('\r');
  if (file.size() > MostText) {
    text += QString("\n... %1 more").arg(ToQt(core::FormatByteSize(static_cast<uint64_t>(file.size() - MostText))));
  }
  return text;
}

}  // namespace

SourcesView::SourcesView(platform::Desktop& desktop, QWidget* parent)
    : QWidget(parent),
      m_desktop(desktop),
      m_list(new QTreeWidget),
      m_look(new QStackedWidget),
      m_text(new QPlainTextEdit),
      m_mesh(new view::ModelView),
      m_asText(new QCheckBox("As text")),
      m_folderButton(new QPushButton("Open folder")),
      m_editButton(new QPushButton("Edit")),
      m_source(std::make_shared<view::ModelSource>()) {
  m_list->setObjectName("sourceList");
  m_list->setAccessibleName("Sources");
  m_list->setHeaderLabels({"File", "Size"});
  m_list->setUniformRowHeights(true);
  m_list->header()->setStretchLastSection(false);
  m_list->header()->setSectionResizeMode(FileColumn, QHeaderView::Stretch);
  m_list->header()->setSectionResizeMode(SizeColumn, QHeaderView::ResizeToContents);
  m_text->setObjectName("sourceText");
  m_text->setAccessibleName("Text of the file");
  m_text->setReadOnly(true);
  m_text->setTabChangesFocus(true);
  m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
  m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  m_text->setPlaceholderText("The file that is chosen is shown here");
  m_highlighter = new SourceHighlighter(m_text->document(), *m_text);
  m_mesh->setObjectName("sourceMesh");
  m_look->addWidget(m_text);
  m_look->addWidget(m_mesh);
  m_asText->setObjectName("asTextCheck");
  m_asText->setToolTip("Show meshes and animations as text too");
  m_folderButton->setObjectName("sourceFolderButton");
  m_folderButton->setToolTip("Open the folder of the chosen file in the file manager");
  m_editButton->setObjectName("sourceEditButton");
  m_editButton->setToolTip("Open the chosen file in your editor");
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : {m_folderButton, m_editButton}) {
    button->setAutoDefault(false);
    buttons->addWidget(button);
  }
  buttons->addStretch(1);
  buttons->addWidget(m_asText);
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->addWidget(m_list);
  splitter->addWidget(m_look);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({150, 350});
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(splitter, 1);
  rows->addLayout(buttons);
  connect(m_list, &QTreeWidget::currentItemChanged, this, &SourcesView::Look);
  connect(m_list, &QTreeWidget::itemActivated, this, &SourcesView::Edit);
  connect(m_asText, &QAbstractButton::toggled, this, &SourcesView::Look);
  connect(m_folderButton, &QAbstractButton::clicked, this, &SourcesView::OpenFolder);
  connect(m_editButton, &QAbstractButton::clicked, this, &SourcesView::Edit);
  Clear();
}

bool SourcesView::IsEmpty() const {
  return m_list->topLevelItemCount() == 0;
}

void SourcesView::Clear() {
  m_reading.Forget();
  m_list->clear();
  m_text->clear();
  m_mesh->ShowText({});
  m_look->setCurrentWidget(m_text);
  m_folderButton->setEnabled(false);
  m_editButton->setEnabled(false);
}

void SourcesView::Add(const std::string& model, const std::string& folder,
                      const std::vector<core::WrittenFile>& files) {
  auto* parent = new QTreeWidgetItem(m_list, {ToQt(core::LastComponent(model))});
  parent->setToolTip(FileColumn, ToQt(folder));
  parent->setData(FileColumn, PathRole, ToQt(folder));
  QTreeWidgetItem* first = nullptr;
  for (const core::WrittenFile& file : files) {
    const QString path = QFileInfo(ToQt(file.Path)).isAbsolute() ? ToQt(file.Path) : ToQt(folder + "/" + file.Path);
    QString name = ToQt(file.Path);
    if (name.startsWith(ToQt(folder) + "/")) name.remove(0, static_cast<int>(folder.size()) + 1);
    auto* row = new QTreeWidgetItem(parent, {name, ToQt(core::FormatByteSize(file.Size))});
    row->setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignVCenter);
    row->setToolTip(FileColumn, path);
    row->setData(FileColumn, PathRole, path);
    if (first == nullptr) first = row;
  }
  parent->setExpanded(m_list->topLevelItemCount() == 1);
  if (m_list->currentItem() == nullptr && first != nullptr) m_list->setCurrentItem(first);
}

std::string SourcesView::ChosenPath() const {
  const QTreeWidgetItem* row = m_list->currentItem();
  return row != nullptr ? FromQt(row->data(FileColumn, PathRole).toString()) : std::string();
}

void SourcesView::Look() {
  const QString path = ToQt(ChosenPath());
  const bool isFile = QFileInfo(path).isFile();
  m_folderButton->setEnabled(!path.isEmpty());
  m_editButton->setEnabled(isFile);
  m_reading.Forget();
  if (!isFile) {
    m_text->clear();
    m_look->setCurrentWidget(m_text);
    return;
  }
  if (IsMesh(path) && !m_asText->isChecked()) {
    m_reading.Run([source = m_source, path, game = m_gameDirectory] { return source->Load(FromQt(path), game); },
                  [this](const view::ShownModel& model) {
                    if (model.Model) {
                      m_mesh->ShowModel(model);
                    } else {
                      m_mesh->ShowText(ToQt(model.Error));
                    }
                    m_look->setCurrentWidget(m_mesh);
                  });
    return;
  }
  m_reading.Run([path] { return ReadText(path); },
                [this, path](const QString& text) {
                  m_highlighter->SetLanguage(SourceHighlighter::LanguageOf(path));
                  m_text->setPlainText(text);
                  m_look->setCurrentWidget(m_text);
                });
}

void SourcesView::OpenFolder() {
  const QFileInfo chosen(ToQt(ChosenPath()));
  const std::string folder = platform::PathFromQt(chosen.isDir() ? chosen.filePath() : chosen.path());
  if (m_desktop.Open(folder)) return;
  m_desktop.Box(this, platform::BoxIcon::Stop, "Unable to open the folder " + folder, "Error");
}

void SourcesView::Edit() {
  const std::string path = ChosenPath();
  if (!QFileInfo(ToQt(path)).isFile() || m_desktop.Edit(path) == platform::EditStart::Begun) return;
  m_desktop.Box(this, platform::BoxIcon::Stop, "Unable to open " + path + " in an editor", "Error");
}

}  // namespace tarnwick::pages
