#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick::core {

/// The name that a typing mistake may have turned into what was looked for: names are offered one by one, the nearest
/// is kept, if it is near at all.
class NearName {
 public:
  explicit NearName(std::string_view wanted);
  void Offer(std::string_view name);
  const std::string& Best() const { return m_best; }

 private:
  std::string m_wanted;
  std::string m_best;
  size_t m_distance;
  size_t m_left = 2000;  // names that are still compared; among more the search would take too long
};

}  // namespace tarnwick::core
