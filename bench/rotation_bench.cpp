// Rotations turned side by side, against the plain functions one by one.

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "model/bone_math.h"
#include "model/quick_rotations.h"

namespace tarnwick::model {
namespace {

constexpr size_t Count = 1024;

std::vector<EulerAngles> SomeAngles() {
  std::mt19937 random(5);
  std::uniform_real_distribution<float> turn(-3.2f, 3.2f);
  std::vector<EulerAngles> angles(Count);
  for (EulerAngles& e : angles) e = {turn(random), turn(random), turn(random)};
  return angles;
}

std::vector<Quat> SomeRotations() {
  std::vector<Quat> rotations(Count);
  QuickEulerToQuat(SomeAngles(), rotations);
  return rotations;
}

template <typename To, typename From, typename Turn>
void Run(benchmark::State& state, const std::vector<From>& from, const Turn& turn) {
  std::vector<To> to(from.size());
  for (auto _ : state) {
    turn(from, to);
    benchmark::DoNotOptimize(to.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(Count) * state.iterations());
}

void PlainToQuat(benchmark::State& state) {
  Run<Quat>(state, SomeAngles(), [](const auto& from, auto& to) {
    for (size_t i = 0; i < Count; ++i) EulerToQuat(from[i], to[i]);
  });
}
void QuickToQuat(benchmark::State& state) {
  const auto level = static_cast<core::VectorLevel>(state.range(0));
  if (!core::HasVectors(level)) return state.SkipWithError("this machine has no such vectors");
  Run<Quat>(state, SomeAngles(), [level](const auto& from, auto& to) { QuickEulerToQuat(from, to, level); });
}
void PlainToEuler(benchmark::State& state) {
  Run<EulerAngles>(state, SomeRotations(), [](const auto& from, auto& to) {
    for (size_t i = 0; i < Count; ++i) QuatToEuler(from[i], to[i]);
  });
}
void QuickToEuler(benchmark::State& state) {
  const auto level = static_cast<core::VectorLevel>(state.range(0));
  if (!core::HasVectors(level)) return state.SkipWithError("this machine has no such vectors");
  Run<EulerAngles>(state, SomeRotations(), [level](const auto& from, auto& to) { QuickQuatToEuler(from, to, level); });
}

// The levels of core::VectorLevel that have code of their own here.
BENCHMARK(PlainToQuat);
BENCHMARK(QuickToQuat)->Arg(0)->Arg(2)->Arg(3);
BENCHMARK(PlainToEuler);
BENCHMARK(QuickToEuler)->Arg(0)->Arg(2)->Arg(3);

}  // namespace
}  // namespace tarnwick::model
