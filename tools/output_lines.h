#pragma once

#include <string_view>

namespace tarnwick::tools {

/// What a line of a tool's output tells.
enum class LineKind { Plain, Warning, Error };

/// Tells whether a line reports an error or a warning: by the words "error" and "warning" standing alone in it ("0
/// errors" and names such as "error.smd" do not count), and by the ways in which the SDK's tools begin a complaint
/// ("Can't find ...", "Unknown ..."). A line that begins with "Warning:" is one, whatever it warns of. Case does not
/// matter; a place such as "box.qc(12): " may stand in front. The command line of a tool, which is shown above its
/// output, is plain.
LineKind ClassifyLine(std::string_view line);

}  // namespace tarnwick::tools
