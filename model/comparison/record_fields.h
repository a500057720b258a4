#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>

#include "model/comparison/difference_list.h"

namespace tarnwick::model {

/// A field of a record that is compared: whole numbers of four bytes each, or floats.
struct RecordField {
  std::string_view What;
  size_t Offset;
  size_t Count = 1;      // up to 12 numbers
  double Grain = Whole;  // of floats: as DifferenceList::Numbers has it

  static constexpr double Whole = -1;
};

/// What a number of six decimals in a source, turned and turned back, can lose.
inline constexpr double TextGrain = 2e-6;
/// The same behind the cosine and sine of an angle in degrees.
inline constexpr double AngleGrain = 2e-5;

/// Compares `fields` of two records of one kind; nothing else of them.
template <typename T, typename Where>
void CompareFields(DifferenceList& differences, ModelTable table, std::span<const RecordField> fields, const T& first,
                   const T& second, const Where& where) {
  constexpr size_t Most = 12;
  const auto at = [](const T& record, size_t offset) { return reinterpret_cast<const char*>(&record) + offset; };
  for (const RecordField& field : fields) {
    const size_t size = field.Count * sizeof(float);
    if (std::memcmp(at(first, field.Offset), at(second, field.Offset), size) == 0) continue;
    if (field.Grain == RecordField::Whole) {
      std::array<int32_t, Most> a{};
      std::array<int32_t, Most> b{};
      std::memcpy(a.data(), at(first, field.Offset), size);
      std::memcpy(b.data(), at(second, field.Offset), size);
      for (size_t i = 0; i < field.Count; ++i) differences.Whole(table, field.What, where, a[i], b[i]);
    } else {
      std::array<float, Most> a{};
      std::array<float, Most> b{};
      std::memcpy(a.data(), at(first, field.Offset), size);
      std::memcpy(b.data(), at(second, field.Offset), size);
      differences.Numbers(table, field.What, where, std::span(a).first(field.Count), std::span(b).first(field.Count),
                          field.Grain);
    }
  }
}

}  // namespace tarnwick::model
