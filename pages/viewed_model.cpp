#include "pages/viewed_model.h"

#include "core/paths.h"
#include "core/settings_table.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "tools/hlmv_command.h"
#include "view/widget/model_viewer.h"
#include "view/widget/model_window.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::ToQt;

namespace {

/// Lets a model of the game be chosen for a window, which may be closed meanwhile.
void Browse(const BrowseContentFor& browse, view::ModelWindow& window) {
  browse(archives::ContentKind::Model,
         [window = QPointer<view::ModelWindow>(&window)](const std::vector<std::string>& names) {
           if (window == nullptr) return size_t{0};
           QStringList paths;
           for (const std::string& name : names) paths << ToQt(name);
           const size_t opened = window->OpenAll(paths);
           if (opened > 0) window->raise(), window->activateWindow();
           return opened;
         });
}

}  // namespace

void ViewedModel::View(const std::string& modelFile) {
  const std::string game = setting::GameDirectory.Read(m_settings);
  const std::string sdk = setting::SdkDirectory.Read(m_settings);
  const std::string model = tools::ModelFileOf(game, modelFile);
  const process::Command command = tools::HlmvCommand(sdk, game, model);
  const tools::StartSettings start{setting::WineProgram.Read(m_settings)};
  if (!tools::RunsHlmv(sdk, start)) {
    return ShowHere(core::FindIgnoringCase(game + "/models/" + model).value_or(game + "/models/" + model), true);
  }
  if (const auto error = tools::StartHlmv(command, start)) {
    platform::MessageBoxRequest box{tools::HlmvErrorText(command), {}, platform::BoxIcon::None};
    box.Details = error->Message;
    m_desktop.ShowBox(&m_owner, box);
  }
}

void ViewedModel::ShowCompiled(const jobs::ItemResult& result) {
  if (result.Succeeded() && core::FileExists(result.Target)) ShowHere(result.Target, false);
}

void ViewedModel::ShowHere(const std::string& path, bool takesKeys) {
  if (!m_window) {
    m_window = new view::ModelWindow(m_desktop, &m_owner);
    platform::CenterOver(*m_owner.window(), *m_window);
    if (m_browse) m_window->OfferContent([browse = m_browse](view::ModelWindow& window) { Browse(browse, window); });
  }
  m_window->Open(ToQt(path), ToQt(setting::GameDirectory.Read(m_settings)));
  m_window->Viewer().Reload();  // also the same model, compiled anew
  m_window->setAttribute(Qt::WA_ShowWithoutActivating, !takesKeys);
  m_window->show();
  if (!takesKeys) return;
  m_window->raise();
  m_window->activateWindow();
}

}  // namespace tarnwick::pages
