#pragma once

#include "core/app_settings.h"
#include "tools/material_compile.h"

namespace tarnwick::pages {

/// What the settings keep of the Material Compile page. `Images` holds what stands in the list's places, files that are
/// gone included; empty places are left out.
tools::MaterialCompile ReadMaterialSettings(const core::AppSettings& settings);

/// Keeps `values`; of the images the first four.
void WriteMaterialSettings(core::AppSettings& settings, const tools::MaterialCompile& values);

}  // namespace tarnwick::pages
