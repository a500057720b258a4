#pragma once

#include <string>
#include <vector>

namespace tarnwick::cli {

/// One model to be decompiled and the folder that its sources go to.
struct PlannedModel {
  std::string ModelPath;
  std::string OutputDirectory;
};

/// What a command line asks for, and what of it cannot be done.
struct DecompilePlan {
  std::vector<PlannedModel> Models;
  std::vector<std::string> Problems;
};

/// Finds the models that `inputs` name: files, and the .mdl files in (with `recursive`: below) folders, sorted. One
/// model that is named as a file goes straight into `output`; several go into folders of their own below it, named
/// like the model, or with `recursive` like the model's path below its folder. Two models never share a folder: the
/// later one gets "_2", "_3", ...
DecompilePlan PlanDecompile(const std::vector<std::string>& inputs, const std::string& output, bool recursive);

}  // namespace tarnwick::cli
