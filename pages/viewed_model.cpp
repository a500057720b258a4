#include "pages/viewed_model.h"

#include <cerrno>

#include "core/paths.h"
#include "core/settings_table.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "tools/hlmv_command.h"
#include "tools/tool_file.h"
#include "view/widget/model_viewer.h"
#include "view/widget/model_window.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::ToQt;

void ViewedModel::View(const std::string& modelFile) {
  const std::string game = setting::GameDirectory.Read(m_settings);
  const std::string sdk = setting::SdkDirectory.Read(m_settings);
  const std::string model = tools::ModelFileOf(game, modelFile);
  const process::Command command = tools::HlmvCommand(sdk, game, model);
  if (!sdk.empty() && tools::ToolExists(command.Program)) {
    const auto error = tools::StartHlmv(command, {setting::WineProgram.Read(m_settings)});
    if (!error) return;
    // A Windows program without a Wine that runs it is as good as none.
    if (error->Code != ENOEXEC) {
      platform::MessageBoxRequest box{tools::HlmvErrorText(command), {}, platform::BoxIcon::None};
      box.Details = error->Message;
      m_desktop.ShowBox(&m_owner, box);
      return;
    }
  }
  ShowHere(core::FindIgnoringCase(game + "/models/" + model).value_or(game + "/models/" + model), true);
}

void ViewedModel::ShowCompiled(const jobs::ItemResult& result) {
  if (result.Succeeded() && core::FileExists(result.Target)) ShowHere(result.Target, false);
}

void ViewedModel::ShowHere(const std::string& path, bool takesKeys) {
  if (!m_window) {
    m_window = new view::ModelWindow(m_desktop, &m_owner);
    platform::CenterOver(*m_owner.window(), *m_window);
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
