#include "cli/verbs.h"

#include "cli/archive_verb.h"
#include "cli/compile_verb.h"
#include "cli/completions_verb.h"
#ifdef TARNWICK_HAS_SETTINGS
#include "cli/config_verb.h"
#endif
#include "cli/decompile_verb.h"
#ifdef TARNWICK_HAS_IMAGES
#include "cli/material_verb.h"
#include "cli/vtf_verb.h"
#endif
#ifdef TARNWICK_HAS_PICTURES
#include "cli/picture_verb.h"
#endif
#include "cli/project_verb.h"
#include "cli/qc_verb.h"
#include "cli/smd_verb.h"
#include "cli/verify_verb.h"
#include "cli/view_verb.h"

namespace tarnwick::cli {

namespace {

constexpr Verb VerbTable[] = {
    {"decompile", AddDecompileVerb},
    {"compile", AddCompileVerb},
    {"verify", AddVerifyVerb},
    {"qc", AddQcVerb},
    {"project", AddProjectVerb},
    {"smd", AddSmdVerb},
    {"archive", AddArchiveVerb},
#ifdef TARNWICK_HAS_IMAGES
    {"material", AddMaterialVerb},
    {"vtf", AddVtfVerb},
#endif
    {"view", AddViewVerb},
#ifdef TARNWICK_HAS_PICTURES
    {"picture", AddPictureVerb},
#endif
#ifdef TARNWICK_HAS_SETTINGS
    {"config", AddConfigVerb},
#endif
    {"completions", AddCompletionsVerb},
};

}  // namespace

const std::span<const Verb> Verbs = VerbTable;

}  // namespace tarnwick::cli
