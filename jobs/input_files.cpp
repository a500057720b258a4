#include "jobs/input_files.h"

#include <algorithm>
#include <filesystem>

#include "archives/safe_name.h"
#include "core/folder_reader.h"
#include "core/paths.h"
#include "jobs/input_content.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

/// A file's ending with its dot; "" if it has none, or no name before it.
std::string_view ExtensionOf(std::string_view name) {
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot);
}

/// Whether `name`, as the system gave it, holds a backslash that is no separator there. It would be opened as a path,
/// and lead out of the folder of inputs and that of outputs.
bool HoldsForeignSeparator(std::string_view name) {
  return fs::path::preferred_separator != '\\' && name.find('\\') != std::string_view::npos;
}

/// Why what is made of a file must not get that name below a folder; "" if it may.
std::string UnsafeOutput(const InputFile& file, std::string_view extension, bool onDisk) {
  if (onDisk && file.Listed && HoldsForeignSeparator(file.Name)) {
    return "a name with a backslash would be taken for a path";
  }
  const std::string less = WithoutExtension(file.Name, extension);
  const std::string_view last = core::LastComponent(less);
  if (last.empty() && file.Listed) return "it has no name but its ending";
  if (onDisk) return last == "." || last == ".." ? "its name leads out of the folder" : "";
  return archives::UnsafeReason(less);
}

core::Trouble Refused(const std::string& file, const std::string& reason) {
  const std::string shown = archives::PrintableName(file);
  return {.Kind = core::TroubleKind::Refused, .File = shown, .Text = shown + ": " + reason, .Alike = reason};
}

core::Trouble NothingIn(const std::string& input, std::string_view extension, bool recursive) {
  return {.Kind = core::TroubleKind::Missing,
          .File = input,
          .Text = input + ": the folder holds no " + std::string(extension) + " file" +
                  (recursive ? "" : " (those below it were not looked into)")};
}

/// The part of a name behind its archive, or behind `game:`.
std::string NameInside(const std::string& input) {
  archives::ContentName name = archives::ReadContentName(input);
  return name.Where == archives::ContentName::Place::Disk ? std::move(name.Path) : std::move(name.Inside);
}

/// Adds the file, or why it is refused.
void AddFile(InputFiles& found, InputFile file, std::string_view extension, bool onDisk) {
  if (const std::string reason = UnsafeOutput(file, extension, onDisk); !reason.empty()) {
    found.Troubles.push_back(Refused(file.Path, reason));
  } else {
    found.Files.push_back(std::move(file));
  }
}

/// The order of paths: part by part, and a folder's files ahead of those of one whose name goes on.
bool ComesBefore(std::string_view a, std::string_view b) {
  const auto rank = [](char c) { return c == core::PathSeparator ? 0 : static_cast<unsigned char>(c) + 1; };
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [&](char x, char y) { return rank(x) < rank(y); });
}

void AddFolder(InputFiles& found, const std::string& input, std::string_view extension, bool recursive) {
  const fs::path path = core::NativePath(input);
  std::error_code error;
  const auto wants = [&](std::string_view name) { return core::EqualIgnoringCase(ExtensionOf(name), extension); };
  auto files = core::FilesBelow(path, recursive, wants, error);
  std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return ComesBefore(a.Below, b.Below); });
  if (error) {
    const std::string problem = core::PathText(path) + ": " + error.message();
    found.Troubles.push_back({.Kind = core::TroubleKind::Unreadable, .File = input, .Text = problem});
  } else if (files.empty()) {
    found.Troubles.push_back(NothingIn(input, extension, recursive));
  }
  for (const core::FileBelow& file : files) {
    AddFile(found, {file.Path, file.Below, true}, extension, true);
  }
}

}  // namespace

InputFiles FindInputFiles(const std::vector<std::string>& inputs, std::string_view extension, bool recursive,
                          const archives::ContentFiles& content) {
  InputFiles found;
  for (const std::string& input : inputs) {
    std::error_code ignored;
    if (fs::is_directory(core::NativePath(input), ignored)) {
      AddFolder(found, input, extension, recursive);
      continue;
    }
    std::string reason;
    const auto listed = content.FilesIn(input, extension, recursive, reason);
    if (listed && listed->empty()) found.Troubles.push_back(NothingIn(input, extension, recursive));
    for (const archives::ListedFile& file : listed ? *listed : std::vector<archives::ListedFile>()) {
      AddFile(found, {file.Name, file.Below, true}, extension, false);
    }
    if (listed) continue;
    const std::string inside = NameInside(input);
    const bool couldBeFile = core::EqualIgnoringCase(fs::path(inside).extension().string(), extension);
    if (!reason.empty() && !couldBeFile) {
      std::string text = input;
      text.append(": ").append(reason);
      found.Troubles.push_back(
          {.Kind = core::TroubleKind::Unreadable, .File = input, .Text = std::move(text), .Alike = reason});
    } else {
      AddFile(found, {input, std::string(core::LastComponent(inside))}, extension, IsOnDisk(input));
    }
  }
  return found;
}

InputFiles FindInputFiles(const std::vector<std::string>& inputs, std::string_view extension, bool recursive) {
  return FindInputFiles(inputs, extension, recursive, InputContent().Files());
}

std::string WithoutExtension(std::string name, std::string_view extension) {
  if (name.size() >= extension.size() &&
      core::EqualIgnoringCase(std::string_view(name).substr(name.size() - extension.size()), extension)) {
    name.resize(name.size() - extension.size());
  }
  return name;
}

std::string UniqueNames::Take(const std::string& name) {
  std::string taken = name;
  for (int number = 2; !m_taken.insert(core::LowerAscii(taken)).second; ++number) {
    taken = name + "_" + std::to_string(number);
  }
  return taken;
}

}  // namespace tarnwick::jobs
