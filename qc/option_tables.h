#pragma once

#include "qc/tables.h"

namespace tarnwick::qc {

// The tables that the statements' rows name and nobody else needs; the others are in tables.h.
const OptionTable& BodyOptions();
const OptionTable& BodyGroupOptions();
const OptionTable& AttachmentOptions();
const OptionTable& PoseParameterOptions();
const OptionTable& BoneSaveFrameOptions();
const OptionTable& JiggleBoneOptions();
const OptionTable& IkChainOptions();
const OptionTable& AnimBlockOptions();
const OptionTable& LodOptions();

/// The axes that motion is taken out of an animation by: `X`, `LZR` and so on, and `LM` and `LQ`.
bool IsMotionAxis(std::string_view word);

}  // namespace tarnwick::qc
