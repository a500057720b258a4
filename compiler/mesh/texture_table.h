#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "compiler/plan/compile_plan.h"

namespace tarnwick::compiler {

/// The model's textures, in the order in which they are first asked for.
class TextureTable {
 public:
  explicit TextureTable(const CompilePlan& plan);

  /// A material line of a source, or a name of the script, as the name of a texture: without extension, and without
  /// folder unless the script keeps folders.
  std::string NameOf(std::string_view material) const;

  /// The same of a name of the script, which has an extension only where it is that of an image.
  std::string NameInScript(std::string_view name) const;

  /// The texture of that name; a new one if there is none. Letters of either case are alike.
  int32_t Find(const std::string& name);
  /// The same, -1 if there is none: by the name in the sources, or by the one that the script gave it.
  int32_t FindKnown(const std::string& name) const;

  /// The name that the script gives the texture of that name, which may be the same.
  const std::string& Renamed(const std::string& name) const;

  size_t Count() const { return m_names.size(); }
  /// The names as the model has them, renamed where the script says so.
  std::vector<std::string> Names() const;

 private:
  bool m_keepFolders = false;
  std::unordered_map<std::string, std::string> m_renamed;
  std::vector<std::string> m_names;
  std::unordered_map<std::string, int32_t> m_numbers;
};

/// The skin table that the script's rows make: row 0 is 0, 1, 2, ...; each further one has the numbers of its own names
/// in the places of row 0's names. Names that no mesh uses become textures, row by row; those past the end of row 0
/// replace nothing.
std::vector<std::vector<int16_t>> MakeSkins(const std::vector<PlanSkins>& groups, TextureTable& textures);

}  // namespace tarnwick::compiler
