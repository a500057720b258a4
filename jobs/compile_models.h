#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "jobs/host.h"
#include "jobs/item_run.h"
#include "process/command.h"
#include "tools/output_wrapping.h"
#include "tools/program_start.h"

namespace tarnwick::jobs {

/// Model projects and QC scripts to models of a game by studiomdl, one after the other.
struct CompileModels {
  std::vector<std::string> Inputs = {};    // projects' files (.sc), and scripts (every other name)
  std::string Materials = {};              // of projects, relative to the game's materials/models
  std::vector<std::string> Warnings = {};  // what whoever made the scripts has to say of every item
  uint32_t Switches = 0;                   // bits of tools::StudiomdlOptions, besides those of a project
  std::string SdkDirectory = {};  // whose studiomdl runs; the program's own, if there is one, where it is empty
  std::string GameDirectory = {};
  tools::StartSettings Start = {};
  tools::ToolRun Shown = tools::ToolRun::StudiomdlForm;  // whose rule makes what a page shows of a run
};

/// What keeps the job from starting: there is no studiomdl. Nothing if it can start.
[[nodiscard]] std::optional<core::Trouble> ObstacleOf(const CompileModels& job);

/// The call of studiomdl on a script that asks for `switches` itself.
[[nodiscard]] process::Command CommandOf(const CompileModels& job, const std::string& script, uint32_t switches = 0);

/// The target of an item stays open: its script names the model.
[[nodiscard]] JobPlan Plan(const CompileModels& job);

/// Writes the script of each project, runs studiomdl, and judges by what it printed and by the files that it left: an
/// item has succeeded when no line told an error and the model that the script names was written anew. Where a script
/// names none that is a warning. The exit code says nothing: tools that did all end with others than 0. The result's
/// files are the model and its companions; its target is the model, also where it was not written; of the tool's own
/// errors and warnings the first hundred of each are troubles, and the rest is counted.
JobResult Run(const CompileModels& job, Host& host, const std::stop_token& stop);

}  // namespace tarnwick::jobs
