#include "smd/source_comparison.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "core/file_image.h"
#include "core/number_parse.h"
#include "core/paths.h"

namespace tarnwick::smd {

namespace {

/// What numbers lose that are written with six decimals, turned and read again; above 1 a part of the number.
constexpr double TextGrain = 2e-5;
/// Scripts hold what was computed of such numbers, in degrees and products.
constexpr double ScriptGrain = 1e-3;
/// The step of a track follows from its largest value. These are steps that no track of an ordinary model exceeds.
constexpr double PositionStep = 0.05;
constexpr double RotationStep = 0.005;  // radians

constexpr size_t WordsOfPose = 7;  // a bone's number, its place, its three angles
constexpr size_t LongestShown = 100;

using Words = std::vector<std::string_view>;

Words WordsOf(std::string_view line) {
  constexpr std::string_view Blanks = " \t\r";
  Words words;
  for (size_t at = line.find_first_not_of(Blanks); at != std::string_view::npos;) {
    const size_t end = std::min(line.find_first_of(Blanks, at), line.size());
    words.push_back(line.substr(at, end - at));
    at = line.find_first_not_of(Blanks, end);
  }
  return words;
}

std::optional<double> NumberIn(std::string_view word) {
  size_t length = 0;
  const double number = core::ParseReal(word, &length);
  if (length == 0 || length != word.size()) return std::nullopt;
  return number;
}

/// Whether a word is what printing makes of no number. What reads sources takes none for one.
bool IsNoNumber(std::string_view word) {
  if (word.starts_with('-')) word.remove_prefix(1);
  return word == "nan" || word == "inf";
}

/// The lines of a text, and where they stand.
std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

using Angles = std::array<double, 3>;
using Rotation = std::array<double, 9>;

/// The rotation round X, then Y, then Z.
Rotation RotationOf(const Angles& a) {
  const double sx = std::sin(a[0]), cx = std::cos(a[0]);
  const double sy = std::sin(a[1]), cy = std::cos(a[1]);
  const double sz = std::sin(a[2]), cz = std::cos(a[2]);
  return {cz * cy,
          cz * sy * sx - sz * cx,
          cz * sy * cx + sz * sx,
          sz * cy,
          sz * sy * sx + cz * cx,
          sz * sy * cx - cz * sx,
          -sy,
          cy * sx,
          cy * cx};
}

/// The angle between two rotations, in radians: exact for small ones, and large for large ones.
double AngleBetween(const Angles& first, const Angles& second) {
  const Rotation a = RotationOf(first);
  const Rotation b = RotationOf(second);
  double squares = 0;
  for (size_t i = 0; i < a.size(); ++i) squares += (a[i] - b[i]) * (a[i] - b[i]);
  return std::sqrt(squares / 2);
}

/// How two lines differ.
struct LineDifference {
  bool IsRounding = false;
  double Amount = 0;  // of numbers; 0 where words differ
};

class LineComparison {
 public:
  explicit LineComparison(const std::string& name)
      : m_isSmd(core::LowerAscii(name).ends_with(".smd") || core::LowerAscii(name).ends_with(".phys")),
        m_grain(core::LowerAscii(name).ends_with(".qc") ? ScriptGrain : TextGrain) {}

  LineDifference Compare(std::string_view first, std::string_view second) const {
    const Words a = WordsOf(first);
    const Words b = WordsOf(second);
    if (a.size() != b.size()) return {};
    if (m_isSmd && a.size() == WordsOfPose) {
      if (const auto pose = ComparePoses(a, b)) return *pose;
    }
    LineDifference difference{true, 0};
    for (size_t i = 0; i < a.size(); ++i) {
      if (a[i] == b[i] || (m_grain != ScriptGrain && IsNoNumber(a[i]))) continue;
      const auto x = NumberIn(a[i]);
      const auto y = NumberIn(b[i]);
      if (!x || !y) return {};
      const double amount = std::abs(*x - *y);
      difference.Amount = std::max(difference.Amount, amount);
      // What a place lost as it was turned is a part of its distance, not of each of its numbers.
      const bool isPlace = m_isSmd && a.size() > WordsOfPose && i >= 1 && i <= 3;
      const double size = isPlace ? LargestOf(a) : std::max(std::abs(*x), std::abs(*y));
      if (!(amount <= m_grain * std::max(1.0, size))) difference.IsRounding = false;
    }
    return difference;
  }

 private:
  /// Of the three numbers of a vertex's place.
  static double LargestOf(const Words& line) {
    double largest = 0;
    for (size_t i = 1; i <= 3; ++i) largest = std::max(largest, std::abs(NumberIn(line[i]).value_or(0)));
    return largest;
  }

  /// Nothing where the lines are no poses of one bone.
  static std::optional<LineDifference> ComparePoses(const Words& a, const Words& b) {
    std::array<double, WordsOfPose> x{};
    std::array<double, WordsOfPose> y{};
    for (size_t i = 0; i < WordsOfPose; ++i) {
      const auto one = NumberIn(a[i]);
      const auto other = NumberIn(b[i]);
      if (!one || !other || !std::isfinite(*one) || !std::isfinite(*other)) return std::nullopt;
      x[i] = *one;
      y[i] = *other;
    }
    if (x[0] != y[0]) return std::nullopt;
    double moved = 0;
    for (size_t i = 1; i <= 3; ++i) moved = std::max(moved, std::abs(x[i] - y[i]));
    const double turned = AngleBetween({x[4], x[5], x[6]}, {y[4], y[5], y[6]});
    return LineDifference{moved <= PositionStep && turned <= RotationStep, std::max(moved, turned)};
  }

  const bool m_isSmd;
  const double m_grain;
};

std::string Shown(std::string_view line) {
  std::string text(line.substr(0, LongestShown));
  std::erase(text, '\r');
  std::replace(text.begin(), text.end(), '\t', ' ');
  return "\"" + text + (line.size() > LongestShown ? "...\"" : "\"");
}

std::optional<core::FileImage> ReadTold(const core::FileStore& files, const std::string& path,
                                        core::TroubleSink& troubles) {
  std::string reason;
  auto image = files.Read(path, &reason);
  if (!image) {
    troubles.Tell({.Kind = core::TroubleKind::Unreadable,
                   .File = path,
                   .Text = "Unable to read " + path + ": " + reason,
                   .Alike = "a source cannot be read"});
  }
  return image;
}

std::string_view TextOf(const core::FileImage& image) {
  return {reinterpret_cast<const char*>(image.Bytes().data()), image.Bytes().size()};
}

}  // namespace

std::optional<SourceDifference> CompareSourceTexts(const std::string& name, std::string_view first,
                                                   std::string_view second) {
  if (first == second) return std::nullopt;
  const auto a = LinesOf(first);
  const auto b = LinesOf(second);
  const size_t least = std::min(a.size(), b.size());
  // What is equal at both ends is left out, so that a line more or less does not push all that follows apart.
  size_t head = 0;
  while (head < least && a[head] == b[head]) ++head;
  size_t tail = 0;
  while (tail < least - head && a[a.size() - 1 - tail] == b[b.size() - 1 - tail]) ++tail;

  const LineComparison comparison(name);
  SourceDifference result{.File = name};
  for (size_t i = head; i < std::max(a.size(), b.size()) - tail; ++i) {
    const bool inFirst = i < a.size() - tail;
    const bool inSecond = i < b.size() - tail;
    if (inFirst && inSecond && a[i] == b[i]) continue;
    const LineDifference line = inFirst && inSecond ? comparison.Compare(a[i], b[i]) : LineDifference{};
    ++result.Lines;
    result.Largest = std::max(result.Largest, line.Amount);
    if (result.Lines == 1 || (!line.IsRounding && result.RealLines == 0)) {
      result.Line = i + 1;
      result.First = inFirst ? a[i] : std::string_view();
      result.Second = inSecond ? b[i] : std::string_view();
    }
    if (!line.IsRounding) ++result.RealLines;
  }
  if (result.Lines == 0) {  // the last line's end alone
    result.Lines = result.RealLines = 1;
    result.Line = std::max<size_t>(1, a.size());
  }
  return result;
}

std::vector<SourceDifference> CompareSources(const std::string& firstFolder, const std::string& secondFolder,
                                             core::TroubleSink& troubles, const core::FileStore& files) {
  const auto first = files.FilesBelow(firstFolder);
  const auto second = files.FilesBelow(secondFolder);
  std::vector<SourceDifference> differences;
  for (const std::string& name : first) {
    const bool inSecond = std::binary_search(second.begin(), second.end(), name);
    const auto image = inSecond ? ReadTold(files, firstFolder + core::PathSeparator + name, troubles) : std::nullopt;
    const auto other = inSecond ? ReadTold(files, secondFolder + core::PathSeparator + name, troubles) : std::nullopt;
    if (!image || !other) {
      differences.push_back({.File = name, .InFirst = !inSecond || image, .InSecond = other.has_value()});
    } else if (auto difference = CompareSourceTexts(name, TextOf(*image), TextOf(*other))) {
      differences.push_back(std::move(*difference));
    }
  }
  for (const std::string& name : second) {
    if (!std::binary_search(first.begin(), first.end(), name)) differences.push_back({.File = name, .InFirst = false});
  }
  std::sort(differences.begin(), differences.end(), [](const auto& a, const auto& b) { return a.File < b.File; });
  return differences;
}

std::string DifferenceLine(const SourceDifference& difference) {
  if (!difference.InSecond) return difference.File + ": is missing from the second sources";
  if (!difference.InFirst) return difference.File + ": is in the second sources alone";
  const bool many = difference.Lines > 1;
  std::string line =
      difference.File + ": " + std::to_string(difference.Lines) + (many ? " lines differ" : " line differs");
  if (difference.Largest > 0) {
    std::array<char, 32> amount{};
    std::snprintf(amount.data(), amount.size(), "%.3g", difference.Largest);
    line += std::string(many ? " by up to " : " by ") + amount.data();
  }
  if (difference.IsRounding()) line += " (rounding)";
  return line + (many ? ", first line " : ", line ") + std::to_string(difference.Line) + ": " +
         Shown(difference.First) + " and " + Shown(difference.Second);
}

}  // namespace tarnwick::smd
