#include "archives/content_extraction.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>

#include "archives/output_folder.h"
#include "archives/random_file.h"
#include "archives/safe_name.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::archives {

namespace fs = std::filesystem;

namespace {

/// "file: why".
std::string Joined(std::string_view file, std::string_view why) {
  std::string text(file);
  text += ": ";
  return text += why;
}

/// Copies the bytes of `from` into `to` a piece at a time. False if a stop comes too.
bool CopyBytes(const RandomFile& from, core::OutputFile& to, uint64_t& size, const std::stop_token& stop,
               std::string& reason) {
  std::vector<std::byte> piece(size_t{1} << 18);
  for (size = 0; !stop.stop_requested();) {
    const auto read = from.Read(size, piece, reason);
    if (!read) return false;
    if (*read == 0) return true;
    if (!to.Write({reinterpret_cast<const char*>(piece.data()), *read})) {
      reason = to.Error();
      return false;
    }
    size += *read;
  }
  return false;
}

/// Copies one loose file. Nothing is wrong if it lies there already.
bool CopyLoose(const std::string& from, const std::string& name, OutputFolder& folder, const std::stop_token& stop,
               ExtractedFile& result, core::TroubleKind& kind, std::string& reason) {
  result.Name = name;
  result.Path = folder.PathOf(name);
  fs::path target;
  const OutputFolder::Answer answer = folder.Place(name, target, reason);
  kind = answer == OutputFolder::Answer::Refused ? core::TroubleKind::Refused : core::TroubleKind::Unwritable;
  if (answer != OutputFolder::Answer::Ready) return false;
  const auto file = RandomFile::Open(from, reason);
  if (file == nullptr) {
    kind = core::TroubleKind::Unreadable;
    return false;
  }
  std::error_code error;
  if (fs::equivalent(core::NativePath(from), target, error)) {
    result.Size = file->Size().value_or(0);
    return true;
  }
  auto output = core::OutputFile::Create(core::PathText(target), &reason);
  if (!output) return false;
  if (!CopyBytes(*file, *output, result.Size, stop, reason)) return false;
  if (output->Commit()) return true;
  reason = output->Error();
  return false;
}

}  // namespace

size_t CountExisting(const ContentIndex& index, const std::vector<uint32_t>& files,
                     const std::string& outputDirectory) {
  std::error_code error;
  return static_cast<size_t>(std::count_if(files.begin(), files.end(), [&](uint32_t file) {
    const std::string name = index.Name(file);
    return UnsafeReason(name).empty() &&
           fs::exists(fs::symlink_status(core::NativePath(core::PathBelow(outputDirectory, name)), error));
  }));
}

Extraction ExtractContent(const ContentIndex& index, const std::vector<uint32_t>& files,
                          const std::string& outputDirectory, core::TroubleSink& sink, const std::stop_token& stop,
                          const ExtractionProgress& progress) {
  Extraction whole;
  std::map<uint32_t, std::vector<uint32_t>> byPlace;
  for (const uint32_t file : files) byPlace[index.PlaceOf(file)].push_back(file);
  size_t before = 0;
  for (const auto& [place, chosen] : byPlace) {
    if (const auto& archive = index.Places()[place].InArchive; archive != nullptr) {
      std::vector<uint32_t> numbers(chosen.size());
      std::transform(chosen.begin(), chosen.end(), numbers.begin(),
                     [&](uint32_t file) { return index.NumberInPlace(file); });
      Extraction part =
          ExtractFiles(*archive, numbers, outputDirectory, sink, stop, [&](const std::string& name, size_t done) {
            if (progress) progress(name, before + done);
          });
      std::move(part.Files.begin(), part.Files.end(), std::back_inserter(whole.Files));
      whole.Failed += part.Failed;
      whole.Stopped = part.Stopped;
    } else {
      OutputFolder folder;
      std::string reason;
      const bool open = folder.Open(outputDirectory, reason);
      if (!open) {
        sink.Tell({.Level = core::Severity::Error,
                   .Kind = core::TroubleKind::Unwritable,
                   .File = outputDirectory,
                   .Text = PrintableName(Joined(outputDirectory, reason))});
      }
      for (size_t i = 0; open && i < chosen.size(); ++i) {
        whole.Stopped = stop.stop_requested();
        if (whole.Stopped) break;
        const std::string name = index.Name(chosen[i]);
        if (progress) progress(name, before + i);
        ExtractedFile file;
        core::TroubleKind kind = core::TroubleKind::Unwritable;
        if (CopyLoose(index.FullName(chosen[i]), name, folder, stop, file, kind, reason)) {
          whole.Files.push_back(std::move(file));
          continue;
        }
        whole.Stopped = stop.stop_requested();
        if (whole.Stopped) break;
        ++whole.Failed;
        const std::string from = index.FullName(chosen[i]);
        sink.Tell({.Level = core::Severity::Error,
                   .Kind = kind,
                   .File = from,
                   .Text = PrintableName(Joined(from, reason)),
                   .Alike = PrintableName(reason)});
      }
      if (!open) whole.Failed += chosen.size();
    }
    if (whole.Stopped) break;
    before += chosen.size();
  }
  return whole;
}

}  // namespace tarnwick::archives
