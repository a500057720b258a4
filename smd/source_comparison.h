#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/file_store.h"
#include "core/trouble.h"

namespace tarnwick::smd {

/// How a file of sources differs from the one of that name in another folder.
struct SourceDifference {
  std::string File = {};  // below the folders
  bool InFirst = true;    // whether each folder has it
  bool InSecond = true;
  size_t Lines = 0;        // that differ
  size_t RealLines = 0;    // of those, that differ by more than rounding can make
  double Largest = 0;      // the largest difference of two numbers in lines that differ by numbers alone
  size_t Line = 0;         // the first line that differs, of those that really do if there are such; counted from 1
  std::string First = {};  // that line, "" where a file has ended
  std::string Second = {};

  bool IsRounding() const { return InFirst && InSecond && RealLines == 0; }
  bool operator==(const SourceDifference&) const = default;
};

/// Compares two texts of a file called `name`. Nothing where they are equal to the byte. A line differs by rounding if
/// its words are equal but for numbers that lie near each other: in the skeletons of SMD files within a step of an
/// animation's track as files have them at most, turns by the rotation that they make and not by its angles; elsewhere
/// within what six decimals lose.
std::optional<SourceDifference> CompareSourceTexts(const std::string& name, std::string_view first,
                                                   std::string_view second);

/// Compares all files of two folders of `files`, in the order of their names. A file that cannot be read is told and
/// counts as missing.
std::vector<SourceDifference> CompareSources(const std::string& firstFolder, const std::string& secondFolder,
                                             core::TroubleSink& troubles,
                                             const core::FileStore& files = core::DiskStore());

/// The difference in one line.
///     walk.smd: 3 lines differ by up to 0.0002 (rounding), first line 12: "0 1.0" and "0 1.0002"
std::string DifferenceLine(const SourceDifference& difference);

}  // namespace tarnwick::smd
