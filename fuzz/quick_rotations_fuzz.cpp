// Turns rotations made of any bytes side by side, against the plain functions, to the last bit.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "input_values.h"
#include "model/bone_math.h"
#include "model/quick_rotations.h"

using namespace tarnwick;
using namespace tarnwick::model;

namespace {

template <typename From, typename To, typename Quick, typename Plain>
void Compare(const std::vector<From>& from, Quick quick, Plain plain) {
  std::vector<To> results(from.size());
  quick(from, results);
  for (size_t i = 0; i < from.size(); ++i) {
    To expected;
    plain(from[i], expected);
    if (std::memcmp(&expected, &results[i], sizeof(To)) == 0) continue;
    std::fprintf(stderr, "rotation %zu of %zu differs\n", i, from.size());
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Compare<EulerAngles, Quat>(
      fuzz::ValuesOf<EulerAngles>(data, size), [](const auto& from, auto& to) { QuickEulerToQuat(from, to); },
      EulerToQuat);
  Compare<Quat, EulerAngles>(
      fuzz::ValuesOf<Quat>(data, size), [](const auto& from, auto& to) { QuickQuatToEuler(from, to); }, QuatToEuler);
  return 0;
}
