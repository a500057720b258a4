#pragma once

class QTabWidget;
class QWidget;

namespace tarnwick::platform {

/// Moves the focus in `window` to the control that stands behind (`next`) or before the one that has it, as the eye
/// goes down the form: through the layouts from the first item to the last, into group boxes and scroll areas, and
/// through the page of a tab control behind its tabs. False, and nothing done, if there is none.
bool MoveFocus(QWidget& window, bool next);

/// Scrolls what `control` stands in so that it can be seen.
void BringIntoSight(QWidget& control);

/// The first field of `window` in its tab order that a user can fill: a line or box to type into, a list to choose
/// from, a box to tick. Null if there is none.
QWidget* FirstField(QWidget& window);

/// Has the focus follow to the first field of the page behind another tab, where it was in the page that goes out of
/// sight, or where the tab was clicked: of itself it goes to what stands behind the tabs if the new page was never
/// seen, and stays outside the tabs where it was there.
void KeepFocusInTabs(QTabWidget& tabs);

}  // namespace tarnwick::platform
