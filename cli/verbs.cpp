#include "cli/verbs.h"

#include "cli/decompile_verb.h"

namespace tarnwick::cli {

namespace {

constexpr AddVerb VerbTable[] = {
    AddDecompileVerb,
};

}  // namespace

const std::span<const AddVerb> Verbs = VerbTable;

}  // namespace tarnwick::cli
