#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "view/materials/material_files.h"

namespace tarnwick::view {

/// What a material file says, the files that it includes and patches worked in.
struct MaterialText {
  std::string Shader = {};
  std::map<std::string, std::string> Values = {};  // by key in small letters; what blocks for a PC say counts
  /// What is wrong with the text, or why a file that it needs cannot be had; what could be read is in Values.
  std::string Problem = {};
  std::vector<std::string> Tried = {};  // paths at which an included file was looked for and is not

  /// The value of a key; "" if there is none.
  std::string_view Value(std::string_view key) const;
  bool Has(std::string_view key) const { return Values.find(std::string(key)) != Values.end(); }
  bool IsSet(std::string_view key) const;
  /// A number; `otherwise` if there is none or it is not finite.
  float Number(std::string_view key, float otherwise) const;
  /// "[1 .5 0]", "{255 128 0}" or one number for all three, each from 0 to 16; white if there is none.
  std::array<float, 3> Colour(std::string_view key) const;
};

/// Gives the file of a name below `materials`.
using ReadMaterialFile = std::function<MaterialFile(const std::string& name)>;

/// A larger file is no material.
inline constexpr size_t LargestMaterialText = size_t{1} << 20;
/// Files that one material may include, one through the other.
inline constexpr int MostIncludes = 16;

/// Reads the text of the material `name` ("models/props/crate.vmt"). `read` gives what it includes. A file that leads
/// back to itself is told in Problem.
MaterialText ReadMaterialText(std::string_view text, const std::string& name, const ReadMaterialFile& read);

}  // namespace tarnwick::view
