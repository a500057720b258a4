// Scripts as files and texts.

#include "qc/script.h"

#include <cstddef>
#include <span>
#include <utility>

#include "core/paths.h"
#include "qc/folder_look.h"
#include "qc/script_reader.h"

namespace tarnwick::qc {

namespace {

const core::FileStore& FilesOf(const ReadOptions& options) {
  return options.Files != nullptr ? *options.Files : core::DiskStore();
}

/// The options' reader, or one of their files.
FileReader ReaderOf(const ReadOptions& options) {
  if (options.Read) return options.Read;
  return
      [&files = FilesOf(options)](const std::string& path, std::string& reason) { return files.Read(path, &reason); };
}

void ReadWords(Script& script, const ReadOptions& options) {
  FolderLook look(FilesOf(options));
  std::optional<SourceFinder> finder;
  if (options.FindSources) {
    finder.emplace(look, Below("", core::DirectoryWithSeparator(script.Files.Files[0].Path)));
  }
  WordStream words(script.Files, script.Told, options.Read ? nullptr : &look, ReaderOf(options), options.Limits);
  words.Start();
  ScriptReader(script, words, finder ? &*finder : nullptr).ReadAll();
}

}  // namespace

Script ReadScript(const std::string& path, const ReadOptions& options) {
  Script script;
  std::string reason;
  auto image = ReaderOf(options)(path, reason);
  const bool read = image.has_value();
  if (!read) image = core::FileImage::FromBytes(path, {});
  script.Files.Files.push_back({path, std::string(core::LastComponent(path)), std::move(*image)});
  if (read) {
    ReadWords(script, options);
  } else {
    script.Told.Error(core::TroubleKind::Unreadable, {0, 1, 1, 0}, "the script cannot be read: " + reason);
  }
  return script;
}

Script ReadScriptText(std::string_view text, const std::string& path, const ReadOptions& options) {
  Script script;
  script.Files.Files.push_back({path, std::string(core::LastComponent(path)),
                                core::FileImage::FromBytes(path, std::as_bytes(std::span(text.data(), text.size())))});
  ReadWords(script, options);
  return script;
}

std::optional<std::string> FindModelName(const std::string& path) {
  ReadOptions options;
  options.FindSources = false;
  const Script script = ReadScript(path, options);
  const Statement* name = script.Last(Command::ModelName);
  if (name == nullptr) return std::nullopt;
  return std::string(name->Arguments[0].Text);
}

}  // namespace tarnwick::qc
