#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace tarnwick::tools {

/// The log channel of the compile pages. A page points it at its own log text before it starts its work; what is
/// appended while it points nowhere is dropped. One such channel is made for the program and handed to its pages.
/// Used on the pages' thread only.
class PageLog {
 public:
  /// Points the channel at `text` (null for nowhere), which outlives that. `repaint`, if given, is called after each
  /// append, to show the text at once.
  void SetTarget(std::string* text, std::function<void()> repaint = {}) {
    m_text = text;
    m_repaint = std::move(repaint);
  }

  /// Appends `text` as it stands; it carries its line ends itself.
  void AppendPageLog(std::string_view text) {
    if (m_text != nullptr) *m_text += text;
    if (m_repaint) m_repaint();
  }

 private:
  std::string* m_text = nullptr;
  std::function<void()> m_repaint;
};

}  // namespace tarnwick::tools
