#pragma once

#include "compiler/compile_context.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Most bones of a model: a vertex and a track name theirs in one byte.
inline constexpr size_t MostBones = 255;

/// Joins the bones of $definebone and of all sources and keeps those that something needs: vertices, attachments, hit
/// boxes, merging, ik chains, procedures, definitions, and all of their ancestors. False, told, if no model can follow.
bool BuildBones(CompileContext& context, ModelBones& bones);

}  // namespace tarnwick::compiler
