#include "model/comparison/difference_list.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <tuple>
#include <utility>

namespace tarnwick::model {

namespace {

constexpr size_t LongestText = 80;

}  // namespace

void DifferenceList::Add(ModelTable table, std::string_view what, std::string where, std::string first,
                         std::string second, double amount, bool isRounding, std::string_view derived) {
  if (Counted(table, what, amount, isRounding, derived)) return;
  if (ModelDifference* known = Find(table, what, isRounding, derived)) {
    known->Count += m_places;
    known->Where = std::move(where);
    known->First = std::move(first);
    known->Second = std::move(second);
    known->Largest = amount;
    return;
  }
  m_differences.push_back({table, std::string(what), std::move(where), std::move(first), std::move(second), m_places,
                           amount, isRounding, derived});
}

ModelDifference* DifferenceList::Find(ModelTable table, std::string_view what, bool isRounding,
                                      std::string_view derived) {
  for (ModelDifference& known : m_differences) {
    if (known.Table == table && known.What == what && known.IsRounding == isRounding && known.Derived == derived) {
      return &known;
    }
  }
  return nullptr;
}

bool DifferenceList::Counted(ModelTable table, std::string_view what, double amount, bool isRounding,
                             std::string_view derived) {
  ModelDifference* known = Find(table, what, isRounding, derived);
  if (known == nullptr || amount > known->Largest) return false;
  known->Count += m_places;
  return true;
}

std::vector<ModelDifference> DifferenceList::Take() {
  std::stable_sort(m_differences.begin(), m_differences.end(), [](const auto& a, const auto& b) {
    return std::tuple(a.Table, !a.IsReal(), a.IsRounding) < std::tuple(b.Table, !b.IsReal(), b.IsRounding);
  });
  return std::exchange(m_differences, {});
}

std::string DifferenceList::NumberText(std::span<const float> numbers) {
  std::string text;
  for (const float number : numbers) {
    std::array<char, 32> one{};
    std::snprintf(one.data(), one.size(), "%.6g", double{number});
    text += (text.empty() ? "" : " ") + std::string(one.data());
  }
  return text;
}

std::string DifferenceList::Quoted(std::string_view text) {
  std::string shown(text.substr(0, LongestText));
  for (char& c : shown) {
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  }
  return "\"" + shown + (text.size() > LongestText ? "...\"" : "\"");
}

}  // namespace tarnwick::model
