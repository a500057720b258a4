#include "model/rotation_packing.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "model/bone_math.h"

namespace tarnwick::model {

namespace {

/// A rotation as the file packs it: three parts of a quaternion, and whether the fourth is negative.
struct PackedParts {
  std::array<int64_t, 3> Parts = {};
  bool NegativeW = false;
};

/// How large the parts of a packed form are.
struct PackedForm {
  std::array<double, 3> Read;   // one over what a step is read as
  std::array<double, 3> Typed;  // one over what a step is made from
  std::array<int64_t, 3> Middles;
  double MostRead;  // radians by which the text of a read rotation may miss it
  double MostCut;   // radians that cutting three parts by a step turns at most, where the fourth is not nearly 0
  void (*Decode)(const PackedParts&, Quat&);

  int64_t Most(size_t part) const { return 2 * Middles[part] - 1; }
};

PackedQuat64 Bits64(const PackedParts& packed) {
  uint64_t bits = uint64_t{packed.NegativeW ? 1U : 0U} << 63;
  for (size_t i = 0; i < 3; ++i) bits |= static_cast<uint64_t>(packed.Parts[i]) << (21 * i);
  return {bits};
}
PackedQuat48 Words48(const PackedParts& packed) {
  return {{static_cast<uint16_t>(packed.Parts[0]), static_cast<uint16_t>(packed.Parts[1]),
           static_cast<uint16_t>(packed.Parts[2] | (packed.NegativeW ? 0x8000 : 0))}};
}

constexpr PackedForm Form64 = {{1048576.5, 1048576.5, 1048576.5},
                               {1048576, 1048576, 1048576},
                               {1048576, 1048576, 1048576},
                               6e-7,
                               8e-6,
                               [](const PackedParts& packed, Quat& q) { DecodeQuat64(Bits64(packed), q); }};
constexpr PackedForm Form48 = {{32768, 32768, 16384},
                               {32768, 32768, 16384},
                               {32768, 32768, 16384},
                               6e-6,
                               2.6e-4,
                               [](const PackedParts& packed, Quat& q) { DecodeQuat48(Words48(packed), q); }};

int64_t PartOf(const PackedForm& form, size_t part, double step) {
  const int64_t whole = std::isfinite(step) ? static_cast<int64_t>(step) : 0;
  return std::clamp<int64_t>(whole + form.Middles[part], 0, form.Most(part));
}

PackedParts PackRounded(const PackedForm& form, const Quat& q, double sign) {
  const double parts[3] = {double{q.x}, double{q.y}, double{q.z}};
  PackedParts packed{.NegativeW = sign * double{q.w} < 0};
  for (size_t i = 0; i < 3; ++i) packed.Parts[i] = PartOf(form, i, std::round(sign * parts[i] * form.Read[i]));
  return packed;
}

PackedParts PackCut(const PackedForm& form, const Quat& q) {
  const double parts[3] = {double{q.x}, double{q.y}, double{q.z}};
  PackedParts packed{.NegativeW = q.w < 0};
  for (size_t i = 0; i < 3; ++i) packed.Parts[i] = PartOf(form, i, std::trunc(parts[i] * form.Typed[i]));
  return packed;
}

double MissOf(const PackedForm& form, const PackedParts& packed, const Quat& q) {
  Quat is;
  form.Decode(packed, is);
  return AngleBetween(is, q);
}

constexpr std::array<double, 2> Signs = {1, -1};  // a quaternion and its negative are one rotation

/// The packed rotation that reads as `q`, if there is one. A part that is a step off the rounded one misses it by half
/// a step at least, which is more than a read rotation does.
std::optional<PackedParts> PackRead(const PackedForm& form, const Quat& q) {
  for (const double sign : Signs) {
    PackedParts tried = PackRounded(form, q, sign);
    if (MissOf(form, tried, q) <= form.MostRead) return tried;
    tried.NegativeW = !tried.NegativeW;  // near 0 the fourth part's sign is lost in the rounding
    if (MissOf(form, tried, q) <= form.MostRead) return tried;
  }
  return std::nullopt;
}

/// The packed rotation that comes nearest to `q`: rounding each part by itself misses it a little where all three turn
/// together, and a good deal where the fourth is near 0. The parts reach to -1 and not to 1.
PackedParts PackNearest(const PackedForm& form, const Quat& q) {
  PackedParts best;
  double least = 5;
  for (const double sign : Signs) {
    const PackedParts start = PackRounded(form, q, sign);
    for (int step = -1; step < 54; ++step) {
      PackedParts tried = start;
      if (step >= 0) {
        const int steps[3] = {step % 3 - 1, step / 3 % 3 - 1, step / 9 % 3 - 1};
        for (size_t i = 0; i < 3; ++i) {
          tried.Parts[i] = std::clamp<int64_t>(start.Parts[i] + steps[i], 0, form.Most(i));
        }
        if (step >= 27) tried.NegativeW = !tried.NegativeW;
      }
      const double miss = MissOf(form, tried, q);
      if (miss < least) {
        least = miss;
        best = tried;
      }
    }
  }
  return best;
}

PackedParts Pack(const PackedForm& form, const EulerAngles& angles) {
  Quat q;
  EulerToQuat(angles, q);
  if (const auto read = PackRead(form, q)) return *read;
  const PackedParts cut = PackCut(form, q);
  return MissOf(form, cut, q) <= form.MostCut ? cut : PackNearest(form, q);
}

/// Whether `angles` pack into `wanted`, also where they are a little off, as after turns to and fro.
bool PacksInto(const PackedForm& form, const EulerAngles& angles, const Quat& wanted) {
  constexpr float Off = 2e-7f;
  for (const float off : {0.0f, -Off, Off}) {
    const EulerAngles moved = {angles.x + off, angles.y - off, angles.z + off};
    Quat is;
    EulerToQuat(moved, is);
    // What packing finds misses the rotation no more than rounding does, or than it may be cut short.
    const double miss = AngleBetween(wanted, is);
    if (miss > form.MostCut && miss > MissOf(form, PackRounded(form, is, 1), is)) return false;
    form.Decode(Pack(form, moved), is);
    if (is.x != wanted.x || is.y != wanted.y || is.z != wanted.z || is.w != wanted.w) return false;
  }
  return true;
}

/// The number with six decimals next to `value`; a quarter turn's, or 0, where that is as near as `unseen`.
float Typed(float value, double unseen) {
  constexpr double QuarterTurn = 1.5707963267948966;
  constexpr double Decimals = 1e6;
  const double quarters = std::round(double{value} / QuarterTurn) * QuarterTurn;
  const double taken = std::abs(double{value} - quarters) <= unseen ? quarters : double{value};
  return static_cast<float>(std::round(taken * Decimals) / Decimals + 0.0);  // no negative zero
}

}  // namespace

PackedQuat64 PackQuat64(const EulerAngles& angles) {
  return Bits64(Pack(Form64, angles));
}

PackedQuat48 PackQuat48(const EulerAngles& angles) {
  return Words48(Pack(Form48, angles));
}

std::optional<EulerAngles> TypedAngles(const Quat& packed, const EulerAngles& angles, const EulerAngles& usual,
                                       float turnZ) {
  struct Try {
    const PackedForm* Form;
    double Step;  // in radians, two of which a rotation is cut short by at most
  };
  for (const Try& tried : {Try{&Form64, 2e-6}, Try{&Form48, 6.2e-5}}) {
    const double unseen = 2 * tried.Step;
    const EulerAngles typed[] = {
        {Typed(usual.x, 0), Typed(usual.y, 0), Typed(usual.z, 0)},
        {Typed(angles.x, unseen), Typed(angles.y, unseen), Typed(angles.z, unseen)},
    };
    for (const EulerAngles& each : typed) {
      if (PacksInto(*tried.Form, {each.x, each.y, each.z + turnZ}, packed)) return each;
    }
  }
  return std::nullopt;
}

double AngleBetween(const Quat& p, const Quat& q) {
  const double a[4] = {double{p.x}, double{p.y}, double{p.z}, double{p.w}};
  const double b[4] = {double{q.x}, double{q.y}, double{q.z}, double{q.w}};
  double near = 0, far = 0;  // to q, and to its negative, which is the same rotation
  for (size_t i = 0; i < 4; ++i) {
    near += (a[i] - b[i]) * (a[i] - b[i]);
    far += (a[i] + b[i]) * (a[i] + b[i]);
  }
  const double angle = 2 * std::sqrt(std::min(near, far));
  return std::isnan(angle) ? 4 : angle;
}

}  // namespace tarnwick::model
