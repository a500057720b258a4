#include "archives/archive_summary.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "archives/folded_text.h"
#include "archives/safe_name.h"
#include "core/paths.h"

namespace tarnwick::archives {

namespace {

std::string_view Extension(std::string_view lastPart) {
  const size_t dot = lastPart.find_last_of('.');
  return dot == std::string_view::npos ? std::string_view() : lastPart.substr(dot);
}

ArchivePart PartOf(const Archive& archive, uint16_t number) {
  ArchivePart part;
  const std::string path = archive.PartPath(number);
  part.Name = core::FindIgnoringCase(path).value_or(path);
  std::error_code error;
  part.Size = std::filesystem::file_size(core::NativePath(part.Name), error);
  part.Exists = !error;
  if (error) part.Size = 0;
  return part;
}

}  // namespace

ArchiveSummary Summarize(const Archive& archive) {
  const FileTable& files = archive.Files();
  ArchiveSummary summary;
  summary.Files = files.Count();
  summary.Folders = files.FolderCount();
  std::map<std::string, FileGroup> extensions;
  std::map<uint16_t, ArchivePart> parts;
  for (uint32_t i = 0; i < files.Count(); ++i) {
    const FilePlace& place = files.Place(i);
    summary.Bytes += place.WholeSize();
    if (!files.IsFirst(i)) ++summary.SameNames;
    if (!UnsafeReason(files.Name(i)).empty()) ++summary.UnsafeNames;
    FileGroup& group = extensions[FoldedText(Extension(files.LastPart(i)))];
    ++group.Files;
    group.Bytes += place.WholeSize();
    if (archive.Kind() != ArchiveKind::Vpk || place.Size == 0) continue;
    const auto [part, isNew] = parts.try_emplace(place.Part);
    if (isNew) part->second = PartOf(archive, place.Part);
    ++part->second.Files;
    part->second.Bytes += place.Size;
  }
  for (auto& [extension, group] : extensions) {
    group.Name = extension;
    summary.Extensions.push_back(group);
  }
  std::stable_sort(summary.Extensions.begin(), summary.Extensions.end(),
                   [](const FileGroup& a, const FileGroup& b) { return a.Bytes > b.Bytes; });
  for (const auto& [number, part] : parts) summary.Parts.push_back(part);
  return summary;
}

}  // namespace tarnwick::archives
