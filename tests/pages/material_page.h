#pragma once

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QImage>
#include <QLineEdit>
#include <memory>

#include "pages/mat_dialog.h"
#include "pages/material_list.h"
#include "project/model_options.h"
#include "support/scratch_folder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

/// The Material Compile page in a window of its own that takes drops, as in the main dialog.
class MaterialPage : public testing::Test {
 protected:
  void Open() {
    m_page = std::make_unique<CMatDialog>(PageContext{m_settings, m_desktop, m_options, &m_pageLog, m_configure});
    QObject::connect(m_page.get(), &CMatDialog::MaterialDirectoryChanged,
                     [this](const std::string& directory) { m_directories.push_back(directory); });
    m_page->Create();
    m_page->AcceptFiles();
    m_page->show();
  }

  /// Writes an image of one colour and tells its path.
  std::string Image(const std::string& name, const QColor& color = Qt::red, int side = 8) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(QString::fromStdString(m_folder.Path(name))));
    return m_folder.Path(name);
  }

  CMaterialList& List() { return *m_page->findChild<CMaterialList*>(); }
  CEnvmapDialog& Envmap() { return *m_page->findChild<CEnvmapDialog*>(); }
  QLineEdit& Edit(const char* name) { return tests::ControlOf<QLineEdit>(*m_page, name); }
  QAbstractButton& Button(const char* name) { return tests::ControlOf<QAbstractButton>(*m_page, name); }
  std::string& Kept(const std::string& name) { return m_settings.Values["Tarnwick/" + name]; }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
  tools::PageLog m_pageLog;
  std::function<void()> m_configure;       // what the button "Configure" does
  std::vector<std::string> m_directories;  // that the page has told of
  std::unique_ptr<CMatDialog> m_page;
};

}  // namespace tarnwick::pages
