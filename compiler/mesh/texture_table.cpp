#include "compiler/mesh/texture_table.h"

#include <algorithm>

#include "core/paths.h"
#include "smd/image_ending.h"

namespace tarnwick::compiler {

TextureTable::TextureTable(const CompilePlan& plan) {
  const auto& folders = plan.MaterialFolders;
  m_keepFolders = std::find(folders.begin(), folders.end(), "") != folders.end();
  for (const auto& [from, to] : plan.RenamedMaterials) {
    // The new name is kept with its folder: it is none of a mesh, which brings the folders of its author's disk.
    m_renamed.try_emplace(core::LowerAscii(NameInScript(from)),
                          smd::EndsAsImage(to) ? to.substr(0, to.rfind('.')) : to);
  }
}

std::string TextureTable::NameOf(std::string_view material) const {
  const size_t slash = material.find_last_of("/\\");
  // A folder of the author's own disk is none of the game's.
  const bool isAbsolute =
      material.find(':') != std::string_view::npos || material.starts_with('/') || material.starts_with('\\');
  if (slash != std::string_view::npos && (!m_keepFolders || isAbsolute)) material.remove_prefix(slash + 1);
  const size_t dot = material.rfind('.');
  const size_t folder = material.find_last_of("/\\");
  if (dot != std::string_view::npos && (folder == std::string_view::npos || dot > folder)) {
    material = material.substr(0, dot);
  }
  return std::string(material);
}

std::string TextureTable::NameInScript(std::string_view name) const {
  const bool isImage = smd::EndsAsImage(name);
  // What NameOf takes away is then not a part of the name.
  return NameOf(isImage ? std::string(name) : std::string(name) + ".tga");
}

int32_t TextureTable::Find(const std::string& name) {
  const auto [entry, isNew] = m_numbers.try_emplace(core::LowerAscii(name), static_cast<int32_t>(m_names.size()));
  if (isNew) m_names.push_back(name);
  return entry->second;
}

int32_t TextureTable::FindKnown(const std::string& name) const {
  const std::string lower = core::LowerAscii(name);
  const auto found = m_numbers.find(lower);
  if (found != m_numbers.end()) return found->second;
  for (size_t i = 0; i < m_names.size() && !m_renamed.empty(); ++i) {
    if (core::LowerAscii(Renamed(m_names[i])) == lower) return static_cast<int32_t>(i);
  }
  return -1;
}

const std::string& TextureTable::Renamed(const std::string& name) const {
  const auto renamed = m_renamed.find(core::LowerAscii(name));
  return renamed == m_renamed.end() ? name : renamed->second;
}

std::vector<std::string> TextureTable::Names() const {
  std::vector<std::string> names;
  names.reserve(m_names.size());
  for (const std::string& name : m_names) names.push_back(Renamed(name));
  return names;
}

std::vector<std::vector<int16_t>> MakeSkins(const std::vector<PlanSkins>& groups, TextureTable& textures) {
  const auto numberOf = [&](const std::string& material) {
    const std::string name = textures.NameInScript(material);
    const int32_t known = textures.FindKnown(name);
    return known >= 0 ? known : textures.Find(name);
  };
  std::vector<std::vector<std::vector<int32_t>>> numbers;  // of each group, row and column
  size_t rows = 1;
  for (const PlanSkins& group : groups) {
    auto& table = numbers.emplace_back();
    for (const auto& row : group.Rows) {
      auto& cells = table.emplace_back();
      for (const std::string& name : row) cells.push_back(numberOf(name));
    }
    rows = std::max(rows, group.Rows.size());
  }
  std::vector<std::vector<int16_t>> skins(rows, std::vector<int16_t>(textures.Count()));
  for (size_t row = 0; row < rows; ++row) {
    for (size_t i = 0; i < textures.Count(); ++i) skins[row][i] = static_cast<int16_t>(i);
    if (row == 0) continue;
    for (const auto& table : numbers) {
      if (row >= table.size()) continue;
      for (size_t column = 0; column < std::min(table[0].size(), table[row].size()); ++column) {
        skins[row][static_cast<size_t>(table[0][column])] = static_cast<int16_t>(table[row][column]);
      }
    }
  }
  return skins;
}

}  // namespace tarnwick::compiler
