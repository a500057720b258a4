#pragma once

#include <QString>
#include <string>

class QWidget;

namespace tarnwick::controls {

/// What controls with links tell to screen readers and have in common. A control is registered with
/// RegisterLinkControls before it is first looked at.
class LinkControl {
 public:
  virtual ~LinkControl() = default;

  /// The words that the control shows.
  virtual QString LinkText() const = 0;
  /// Whether the control is nothing but one link, rather than text that has links in it.
  virtual bool IsOneLink() const = 0;
  /// The address of the link that the keyboard is on; empty if there is none.
  virtual std::string CurrentAddress() const = 0;
  /// Opens the link that the keyboard is on.
  virtual void OpenCurrentLink() = 0;
};

/// Makes screen readers see LinkControls for what they are. Further calls do nothing.
void RegisterLinkControls();

/// What Qt takes for a tooltip that shows `text` as it stands.
QString PlainToolTip(const QString& text);

}  // namespace tarnwick::controls
