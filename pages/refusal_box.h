#pragma once

#include "project/field_rules.h"

namespace tarnwick::platform {
class CDialog;
}

namespace tarnwick::pages {

/// Shows why something is not taken, if it is not, and moves the cursor to the field in question: the control of
/// `dialog` whose accessible name is the refusal's field. Gives whether it was refused.
bool ShowRefusal(platform::CDialog& dialog, const project::Verdict& verdict);

}  // namespace tarnwick::pages
