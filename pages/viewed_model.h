#pragma once

#include <QPointer>
#include <string>
#include <utility>

#include "jobs/result.h"
#include "pages/page.h"
#include "platform/desktop.h"

namespace tarnwick::view {
class ModelWindow;
}

namespace tarnwick::pages {

/// The window in which a page shows the models that it compiles: one, made when there is something to show.
class ViewedModel {
 public:
  /// All of it outlives this object, as does `owner`, which the window goes with. With `browse` models of the game can
  /// be chosen for the window too.
  ViewedModel(platform::Desktop& desktop, const core::AppSettings& settings, QWidget& owner,
              BrowseContentFor browse = {})
      : m_desktop(desktop), m_settings(settings), m_browse(std::move(browse)), m_owner(owner) {}

  /// Shows the model of the game that is named by its path below the game's `models`: in the SDK's hlmv where there is
  /// one that runs here, else in a window of our own.
  void View(const std::string& modelFile);
  /// Shows what a compile has made, if it is good, in our own window, which does not take the keys away.
  void ShowCompiled(const jobs::ItemResult& result);

 private:
  void ShowHere(const std::string& path, bool takesKeys);

  platform::Desktop& m_desktop;
  const core::AppSettings& m_settings;
  const BrowseContentFor m_browse;
  QWidget& m_owner;
  QPointer<view::ModelWindow> m_window;
};

}  // namespace tarnwick::pages
