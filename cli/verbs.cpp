#include "cli/verbs.h"

#include "cli/compile_verb.h"
#include "cli/decompile_verb.h"
#include "cli/view_verb.h"

namespace tarnwick::cli {

namespace {

constexpr AddVerb VerbTable[] = {
    AddDecompileVerb,
    AddCompileVerb,
    AddViewVerb,
};

}  // namespace

const std::span<const AddVerb> Verbs = VerbTable;

}  // namespace tarnwick::cli
