#include "compiler/files/model_files.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "compiler/files/commit_together.h"
#include "core/output_file.h"
#include "core/paths.h"

namespace tarnwick::compiler {

namespace {

bool Fail(CompileReport& report, core::TroubleKind kind, std::string file, std::string text) {
  report.Troubles.push_back(
      {.Level = core::Severity::Error, .Kind = kind, .File = std::move(file), .Text = std::move(text)});
  ++report.Errors;
  return false;
}

/// The name's path below the folder of models, with slashes; nothing if it would lead elsewhere.
std::optional<std::string> SafePath(std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  // A separator ahead means the folder of models too.
  const bool absolute = name.find(':') != std::string::npos;
  const bool hasControl = std::ranges::any_of(name, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
  if (absolute || hasControl) return std::nullopt;
  std::string path;
  for (size_t at = 0; at <= name.size();) {
    const size_t end = std::min(name.find('/', at), name.size());
    const std::string_view part = std::string_view(name).substr(at, end - at);
    at = end + 1;
    if (part.empty() || part == ".") continue;
    if (part == "..") return std::nullopt;
    path += (path.empty() ? "" : "/") + std::string(part);
  }
  if (path.empty() || core::EqualIgnoringCase(core::LastComponent(path), ".mdl")) return std::nullopt;
  return path;
}

void RemoveOld(const std::string& path, core::FileStore& store, CompileReport& report) {
  if (!store.Holds(path)) return;
  const std::string problem = store.Remove(path);
  const bool removed = problem.empty();
  const core::Severity level = removed ? core::Severity::Note : core::Severity::Warning;
  report.Troubles.push_back({.Level = level,
                             .Kind = removed ? core::TroubleKind::Lost : core::TroubleKind::Unwritable,
                             .File = path,
                             .Text = removed ? path + " of the model before is removed; the model has none now"
                                             : path + " of the model before cannot be removed: " + problem});
  if (!removed) ++report.Warnings;
}

}  // namespace

bool WriteModelFiles(const CompiledFiles& files, const std::string& modelName, const std::string& gameDirectory,
                     core::FileStore& store, CompileReport& report) {
  const auto path = SafePath(modelName);
  if (!path) {
    return Fail(report, core::TroubleKind::Refused, modelName,
                "the model's name \"" + modelName + "\" is no place below the folder of models");
  }
  std::string folder = gameDirectory.empty() ? "." : gameDirectory;
  while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
  folder += "/models/";
  const std::string base = folder + path->substr(0, path->size() - std::string_view(".mdl").size());
  const std::string parent = base.substr(0, base.rfind('/'));
  std::string problem = store.MakeFolder(folder);
  if (problem.empty() && !store.LiesIn(parent, folder)) {
    return Fail(report, core::TroubleKind::Refused, base, base + " would lie outside of " + folder);
  }
  if (problem.empty()) problem = store.MakeFolder(parent);
  if (!problem.empty()) {
    return Fail(report, core::TroubleKind::Unwritable, base, "the folder of " + base + " cannot be made: " + problem);
  }
  struct Entry {
    std::string_view Ending;
    const std::string& Bytes;
  };
  const Entry entries[] = {
      {".vvd", files.Vvd}, {".dx90.vtx", files.Vtx}, {".phy", files.Phy}, {".ani", files.Ani}, {".mdl", files.Mdl}};
  std::vector<core::OutputFile> outputs;
  for (const Entry& entry : entries) {
    if (entry.Bytes.empty()) continue;
    const std::string name = base + std::string(entry.Ending);
    std::string reason;
    auto output = store.Create(name, &reason);
    if (!output || !output->Write(entry.Bytes)) {
      return Fail(report, core::TroubleKind::Unwritable, name,
                  name + " cannot be written: " + (output ? output->Error() : reason));
    }
    outputs.push_back(std::move(*output));
  }
  std::string failed, reason;
  if (!CommitTogether(outputs, failed, reason)) {
    return Fail(report, core::TroubleKind::Unwritable, failed, failed + " cannot be written: " + reason);
  }
  for (const core::OutputFile& output : outputs) {
    report.Files.push_back({output.Path(), static_cast<int64_t>(output.Size())});
  }
  // What the model had before and has no more would be taken for a part of it.
  for (const Entry& entry : entries) {
    if (entry.Bytes.empty()) RemoveOld(base + std::string(entry.Ending), store, report);
  }
  return true;
}

}  // namespace tarnwick::compiler
