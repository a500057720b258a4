#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/file_image.h"
#include "core/trouble.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

/// Gives the file at a path, whole: from a folder, an archive, or memory. Nothing if there is none; then `reason`, if
/// given, tells why where there is more to tell than that. Sought without regard to case.
using FileSource = std::function<std::optional<core::FileImage>(const std::string& path, std::string* reason)>;

/// Files of the disk.
[[nodiscard]] std::optional<core::FileImage> ReadDiskFile(const std::string& path, std::string* reason);

/// Makes the scene of the compiled model at `path` (its .mdl file) and of the files beside it: .vtx, .vvd, .phy and
/// .ani, had from `files`. Nothing, told, if there is no such model. What else is missing or damaged is told and left
/// out: a model without a .phy file has no hulls, one without vertices no mesh. The scene keeps the files' bytes that
/// its animations are in. Time and memory grow with the files' sizes, whatever their numbers are.
[[nodiscard]] std::optional<Scene> MakeScene(const std::string& path, core::TroubleSink& troubles,
                                             const FileSource& files = ReadDiskFile);

/// Makes the scene of an SMD file: its mesh if it has one, its skeleton, and its frames as one sequence named after the
/// file. It stands as a compiler would turn it. Nothing, told, if it cannot be read.
[[nodiscard]] std::optional<Scene> MakeSmdScene(const std::string& path, core::TroubleSink& troubles,
                                                const FileSource& files = ReadDiskFile);
/// The same of the text of an SMD file.
[[nodiscard]] Scene MakeSmdSceneOfText(std::string_view text, const std::string& path, core::TroubleSink& troubles);

}  // namespace tarnwick::view
