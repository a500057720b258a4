#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/input_file.h"
#include "smd/smd_summary.h"

namespace tarnwick::smd {

/// Checks the shape of an SMD text line by line and counts; no geometry is built. The text comes in pieces of any size;
/// lines, and the text, may be of any length.
///
/// Three sections, "nodes", "skeleton" and "triangles", begin with a line that starts with that word and end at a line
/// that starts with "end", in any order and number; text outside them does not matter. Blanks before a line are
/// dropped.
///   nodes      index, name, parent; the name may stand in double quotes and then hold blanks
///   skeleton   a frame's "time", or a bone's pose: seven tokens
///   triangles  a material line, then three vertices: nine tokens, and, if a link count follows, a bone and a weight
///              for each of the first five links
/// Tokens stand apart by blanks, in nodes and material lines also by tabs. A line that is short of tokens is bad and
/// ends the scan. A last line without a line end loses its last character.
class SmdScanner {
 public:
  /// Adds to the figures of `summary`, which must outlive the scanner.
  explicit SmdScanner(SmdSummary& summary) : m_summary(summary) {}

  /// Takes the next bytes of the text. False once a line is bad; nothing more is then examined.
  bool Feed(std::string_view bytes);
  /// Examines what is left when the text has ended. False if a line is bad.
  bool Finish();

  /// The number, from 1, of the line examined last: the bad one if there is one.
  int64_t LineNumber() const { return m_lineNumber; }

 private:
  enum class Section { None, Nodes, Skeleton, Triangles };
  struct NameHash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  bool Line(std::string_view line);
  bool NodesLine(std::string_view line);
  bool SkeletonLine(std::string_view line);
  bool TrianglesLine(std::string_view line);
  void AddFace(std::string_view material);

  SmdSummary& m_summary;
  std::unordered_map<std::string, size_t, NameHash, std::equal_to<>> m_materials;  // indices into Materials
  size_t m_lastMaterial = 0;
  std::string m_begun;  // a line whose end has not come yet
  int64_t m_lineNumber = 0;
  Section m_section = Section::None;
  int m_position = 0;  // in the triangle: 0 is its material line
  bool m_bad = false;
};

/// Scans an open file from where it stands into `summary`. True if the end of the file was reached, false if a bad line
/// (`badLine`, if given, takes its number) or a failed read (`file.Error()`) stopped the scan. The figures up to that
/// point stay in `summary` in either case.
bool ScanSmdFile(core::InputFile& file, SmdSummary& summary, int64_t* badLine = nullptr);

}  // namespace tarnwick::smd
