#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/comparison/difference.h"

namespace tarnwick::model {

/// Gathers differences, those of one kind (table, what differs, rounding or not) as one. `where` is a function that
/// names the place; it is called where something differs only.
class DifferenceList {
 public:
  /// Steps of what was a real number: one more or less is rounding.
  template <typename Where>
  void Steps(ModelTable table, std::string_view what, const Where& where, int64_t first, int64_t second) {
    if (first == second) return;
    const auto amount = static_cast<double>(std::abs(first - second));
    Add(table, what, where(), std::to_string(first), std::to_string(second), amount, amount <= 1);
  }
  /// Whole numbers and texts differ or not; there is no rounding of them.
  template <typename Where>
  void Whole(ModelTable table, std::string_view what, const Where& where, int64_t first, int64_t second) {
    if (first != second) Add(table, what, where(), std::to_string(first), std::to_string(second), 0, false);
  }
  /// Flags. Those beyond `sayable` are bits of which no statement of a script is known to set them: where they alone
  /// are missing from the second, no source holds them.
  template <typename Where>
  void Flags(ModelTable table, std::string_view what, const Where& where, uint32_t first, uint32_t second,
             uint32_t sayable) {
    if (first == second) return;
    const bool unsaid = (first & sayable) == second;
    Add(table, what, where(), std::to_string(first), std::to_string(second), 0, false,
        unsaid ? "flags that no statement is known to set" : "");
  }
  template <typename Where>
  void Text(ModelTable table, std::string_view what, const Where& where, std::string_view first,
            std::string_view second) {
    if (first != second) Add(table, what, where(), Quoted(first), Quoted(second), 0, false);
  }
  /// Numbers that belong together; they differ by what those that lie farthest apart differ by. Up to `grain`, for
  /// numbers above 1 up to that part of them, is rounding.
  template <typename Where>
  void Numbers(ModelTable table, std::string_view what, const Where& where, std::span<const float> first,
               std::span<const float> second, double grain) {
    double largest = 0;
    bool isRounding = true;
    bool differs = false;
    bool canBeSaid = false;
    for (size_t i = 0; i < first.size(); ++i) {
      if (first[i] == second[i] || (std::isnan(first[i]) && std::isnan(second[i]))) continue;
      differs = true;
      canBeSaid = canBeSaid || std::isfinite(first[i]) || second[i] != 0;
      const double amount = std::abs(double{first[i]} - double{second[i]});
      const double size = std::max(std::abs(double{first[i]}), std::abs(double{second[i]}));
      isRounding = isRounding && amount <= grain * std::max(1.0, size);
      if (std::isfinite(amount)) largest = std::max(largest, amount);
    }
    const std::string_view derived = canBeSaid ? "" : "no number of a source";  // such stand as 0
    // Most differ by less than one before them: texts that nobody will see are not made.
    if (!differs || Counted(table, what, largest, isRounding, derived)) return;
    Add(table, what, where(), NumberText(first), NumberText(second), largest, isRounding, derived);
  }
  /// What differs from now on does so in `places` places.
  void SetPlaces(size_t places) { m_places = places; }
  /// A difference whose size is known. `derived` is as ModelDifference has it, a text that stays.
  void Add(ModelTable table, std::string_view what, std::string where, std::string first, std::string second,
           double amount, bool isRounding, std::string_view derived = {});

  /// What was gathered: in the order of the tables, in each what is more than rounding ahead of the rest.
  std::vector<ModelDifference> Take();

  static std::string NumberText(std::span<const float> numbers);

 private:
  ModelDifference* Find(ModelTable table, std::string_view what, bool isRounding, std::string_view derived);
  /// Counts a difference of a kind that is known by one that is as large; false if there is none yet.
  bool Counted(ModelTable table, std::string_view what, double amount, bool isRounding, std::string_view derived);
  static std::string Quoted(std::string_view text);

  std::vector<ModelDifference> m_differences;
  size_t m_places = 1;
};

}  // namespace tarnwick::model
