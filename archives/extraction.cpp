#include "archives/extraction.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <tuple>
#include <utility>

#include "archives/folded_text.h"
#include "archives/name_pattern.h"
#include "archives/output_folder.h"
#include "archives/safe_name.h"
#include "core/output_file.h"
#include "core/paths.h"

namespace tarnwick::archives {

namespace fs = std::filesystem;

namespace {

/// Files may share bytes, but not so many that an archive fills a disk.
constexpr uint64_t MostSharing = 16;
constexpr uint64_t AlwaysAllowed = uint64_t{1} << 30;

/// One extraction while it runs.
class Run {
 public:
  Run(const Archive& archive, const std::string& output, core::TroubleSink& sink, std::stop_token stop)
      : m_archive(archive), m_output(output), m_sink(sink), m_stop(std::move(stop)) {}

  bool Begin() {
    std::string reason;
    if (m_folder.Open(m_output, reason)) return true;
    Tell(core::TroubleKind::Unwritable, m_output, reason);
    return false;
  }

  /// Refuses to write more than the archive's files on the disk can honestly hold.
  bool IsPlausible(const std::vector<uint32_t>& files) {
    uint64_t wanted = 0;
    std::map<uint16_t, uint64_t> parts;
    const FileTable& table = m_archive.Files();
    for (const uint32_t file : files) {
      const FilePlace& place = table.Place(file);
      wanted += place.WholeSize();
      parts.try_emplace(m_archive.Kind() == ArchiveKind::Gma ? OwnPart : place.Part);
    }
    if (m_archive.IsPacked()) return true;  // its size is bounded already
    uint64_t held = 0;
    for (const auto& [part, ignored] : parts) {
      std::error_code error;
      const uint64_t size = fs::file_size(core::NativePath(m_archive.PartPath(part)), error);
      if (!error) held += size;
    }
    if (wanted <= AlwaysAllowed || wanted / MostSharing <= held) return true;
    Tell(core::TroubleKind::Limit, m_archive.Path(),
         "its files would be " + std::to_string(wanted) + " bytes, but the archive holds " + std::to_string(held) +
             " only: they share the same bytes");
    return false;
  }

  /// False if the file cannot be had or written, which is told, and if the stop came while it was read.
  bool Extract(uint32_t file, ExtractedFile& result) {
    const FileTable& table = m_archive.Files();
    result.Name = table.Name(file);
    std::string reason;
    fs::path path;
    if (UnsafeReason(result.Name).empty() && !table.IsFirst(file)) {
      return Refuse(file, core::TroubleKind::Refused,
                    "the archive has an earlier file of that name; it is not written");
    }
    const OutputFolder::Answer answer = m_folder.Place(result.Name, path, reason);
    if (answer != OutputFolder::Answer::Ready) {
      const bool refused = answer == OutputFolder::Answer::Refused;
      return Refuse(file, refused ? core::TroubleKind::Refused : core::TroubleKind::Unwritable, reason);
    }
    result.Path = m_folder.PathOf(result.Name);
    auto output = core::OutputFile::Create(core::PathText(path), &reason);
    if (!output) return Refuse(file, core::TroubleKind::Unwritable, result.Path + ": " + reason);
    const bool read = m_archive.ReadPieces(
        file, [&](std::string_view bytes) { return !m_stop.stop_requested() && output->Write(bytes); }, reason);
    if (!read && m_stop.stop_requested()) return false;
    if (!read && !reason.empty()) return Refuse(file, core::TroubleKind::Damaged, reason);
    if (!read || !output->Commit()) {
      return Refuse(file, core::TroubleKind::Unwritable, result.Path + ": " + output->Error());
    }
    result.Size = table.Place(file).WholeSize();
    return true;
  }

 private:
  bool Refuse(uint32_t file, core::TroubleKind kind, const std::string& reason) {
    Tell(kind, m_archive.FullName(file), reason);
    return false;
  }

  void Tell(core::TroubleKind kind, const std::string& name, const std::string& reason) {
    m_sink.Tell({.Level = core::Severity::Error,
                 .Kind = kind,
                 .File = name,
                 .Text = PrintableName(name + ": " + reason),
                 .Alike = PrintableName(reason)});
  }

  const Archive& m_archive;
  const std::string& m_output;
  core::TroubleSink& m_sink;
  const std::stop_token m_stop;
  OutputFolder m_folder;
};

}  // namespace

std::vector<uint32_t> ChooseFiles(const Archive& archive, const std::vector<std::string>& patterns) {
  const FileTable& files = archive.Files();
  std::vector<uint32_t> chosen = files.SortedByName();
  if (patterns.empty()) return chosen;
  std::erase_if(chosen, [&](uint32_t file) {
    const std::string name = files.Name(file);
    return std::none_of(patterns.begin(), patterns.end(),
                        [&](const std::string& pattern) { return MatchesPattern(name, pattern); });
  });
  return chosen;
}

Extraction ExtractFiles(const Archive& archive, const std::vector<uint32_t>& files, const std::string& outputDirectory,
                        core::TroubleSink& sink, const std::stop_token& stop, const ExtractionProgress& progress) {
  Extraction result;
  Run run(archive, outputDirectory, sink, stop);
  if (!run.IsPlausible(files) || !run.Begin()) {
    result.Failed = files.size();
    return result;
  }
  std::vector<uint32_t> order = files;
  const auto place = [&](uint32_t file) {
    const FilePlace& at = archive.Files().Place(file);
    return std::tuple(at.Part, at.Offset, file);
  };
  std::sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) { return place(a) < place(b); });
  for (size_t i = 0; i < order.size(); ++i) {
    if (progress && !stop.stop_requested()) progress(archive.Files().Name(order[i]), i);
    ExtractedFile file;
    if (!stop.stop_requested() && run.Extract(order[i], file)) {
      result.Files.push_back(std::move(file));
    } else if (stop.stop_requested()) {
      result.Stopped = true;
      break;
    } else {
      ++result.Failed;
    }
  }
  return result;
}

}  // namespace tarnwick::archives
