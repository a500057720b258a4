#pragma once

#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "decompiler/decompile_job.h"
#include "jobs/host.h"
#include "jobs/input_content.h"
#include "jobs/item_run.h"

namespace tarnwick::jobs {

/// Compiled models to sources, one or many.
struct DecompileTree {
  std::vector<std::string> Inputs = {};                          // models, and folders that are searched for them
  std::shared_ptr<InputContent> Content = {};                    // by which inputs are had; null: no game is known
  std::string OutputDirectory = ".";                             // made if missing
  bool Recursive = false;                                        // also the folders below a folder
  bool OwnFolders = false;                                       // a folder of its own also for a single model
  uint32_t Options = decompiler::DecompileOptionReadyToCompile;  // DecompileOption bits
  std::string MaterialFormat = {};  // "tga" or "png": write materials too, and their textures so; "" for neither
  int Threads = 1;
  bool OneByOne = false;  // one model after the other, with all threads on each
};

/// The models that the job finds, and the directory of each: the output directory itself for the only model that is
/// named, unless it is to have a folder of its own; else one below it, of the model's name, or of its path below the
/// folder in which it was found. No two models share a directory.
[[nodiscard]] JobPlan Plan(const DecompileTree& job);

/// Decompiles every model. What goes with one in an archive is taken from the same archive, or else through the search
/// paths of the game. With a MaterialFormat the materials
/// follow, below the folder "materials" of each model's directory; one that is missing is a warning. Missing
/// directories are made when a model is there; one that stays empty goes again. A failure ends no other model.
JobResult Run(const DecompileTree& job, Host& host, const std::stop_token& stop);

/// The same with the job's plan, which was made before.
JobResult Run(const DecompileTree& job, const JobPlan& plan, Host& host, const std::stop_token& stop);

}  // namespace tarnwick::jobs
