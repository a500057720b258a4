#pragma once

#include "compiler/compile_context.h"

namespace tarnwick::compiler {

/// What $autocenter asks for: moves all sources such that the middle of the meshes' box comes to the origin, and with
/// them the attachments that stand in the model's space. The attachment "placementOrigin" tells where the origin was.
void CenterModel(const CompileContext& context, CompilePlan& plan);

}  // namespace tarnwick::compiler
