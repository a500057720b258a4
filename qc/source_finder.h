#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qc/folder_look.h"

namespace tarnwick::qc {

/// What a source file is wanted for, which decides the endings that may be left out of its name.
enum class SourceKind { Mesh, Animation, Shapes, ProceduralBones };

/// The words of messages: "mesh", "animation", "shape file", "procedural bone file".
std::string_view SourceKindName(SourceKind kind);

/// Finds source files by the names that a script gives them, in the folders that it has named so far: the current one,
/// then those of $addsearchdir, then those under the current one on the stack, then the script's own. Letters' case and
/// the kind of slash do not matter. An ending may be missing, or be one that is not read here: `.smd`, `.sma` and
/// `.phys` are tried for meshes and animations, `.vta` for shapes, `.vrd` for procedural bones.
class SourceFinder {
 public:
  /// `scriptFolder` is that of the script, "" for the current one, or with a separator at its end.
  SourceFinder(FolderLook& look, std::string scriptFolder);

  /// $cd. False if there is no such folder; the script's own is then the current one.
  bool SetFolder(std::string_view folder);
  /// $pushd. False if there is no such folder; it is pushed all the same, so that its $popd has something to take off.
  bool Push(std::string_view folder);
  /// $popd. False if nothing was pushed.
  bool Pop();
  /// $addsearchdir. False if there is no such folder.
  bool AddSearchFolder(std::string_view folder);
  size_t Pushed() const { return m_stack.size() - 1; }

  struct Result {
    std::optional<std::string> Path;
    std::string Nearest;  // where nothing was found: a file there with a name like it, or ""
  };
  Result Find(std::string_view name, SourceKind kind);
  /// The file that a name means which leads to none: where its last folders lead, or of its last name in a folder below
  /// the script's.
  std::optional<std::string> FindElsewhere(std::string_view name, SourceKind kind);

  /// The current folder as messages show it.
  std::string ShownFolder() const;
  /// A name by which sources that are not there are told apart: without ending, with one kind of slash and case.
  std::string KeyOf(std::string_view name) const;

 private:
  std::optional<std::string> FindIn(const std::string& folder, std::string_view name, SourceKind kind);
  std::optional<std::string> FindBelow(std::string_view last, SourceKind kind);
  std::vector<std::string> FoldersToSearch() const;
  std::optional<std::string> FolderAt(std::string_view base, std::string_view folder);

  FolderLook& m_look;
  std::string m_scriptFolder;
  std::vector<std::string> m_stack;  // with a separator at each end; the last is the current one
  std::vector<std::string> m_more;
  int m_looksBelow = 0;
  std::vector<std::pair<std::string, int>> m_below;  // folders from the script's down, with their depth, once asked for
};

}  // namespace tarnwick::qc
