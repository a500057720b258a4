#include "textures/texture_options.h"

#include <algorithm>

#include "core/number_parse.h"
#include "core/paths.h"

namespace tarnwick::textures {

namespace {

struct Switch {
  std::string_view Name;
  bool TextureOptions::*Value;
};
constexpr Switch Switches[] = {
    {"nocompress", &TextureOptions::NoCompress},
    {"dxt5", &TextureOptions::Dxt5},
    {"onebitalpha", &TextureOptions::OneBitAlpha},
    {"stripalphachannel", &TextureOptions::StripAlpha},
    {"normal", &TextureOptions::Normal},
    {"invertgreen", &TextureOptions::InvertGreen},
    {"nomip", &TextureOptions::NoMip},
    {"nolod", &TextureOptions::NoLod},
    {"clamps", &TextureOptions::ClampS},
    {"clampt", &TextureOptions::ClampT},
    {"pointsample", &TextureOptions::PointSample},
    {"trilinear", &TextureOptions::Trilinear},
    {"anisotropic", &TextureOptions::Anisotropic},
};

/// A whole number from `Least` to `Most`, for one or two members.
struct Whole {
  std::string_view Name;
  int TextureOptions::*Value;
  int TextureOptions::*Second;
  int Least;
  int Most;
  bool PowerOfTwo;
};
constexpr Whole Wholes[] = {
    {"reduce", &TextureOptions::ReduceX, &TextureOptions::ReduceY, 1, 1 << 14, true},
    {"reducex", &TextureOptions::ReduceX, nullptr, 1, 1 << 14, true},
    {"reducey", &TextureOptions::ReduceY, nullptr, 1, 1 << 14, true},
    {"startframe", &TextureOptions::StartFrame, nullptr, 0, 9999, false},
    {"endframe", &TextureOptions::EndFrame, nullptr, 0, 9999, false},
};

constexpr std::string_view Blanks = " \t\r\v\f";

/// Takes the next word, in quotes or not, from the front of `line`; empty at its end or at a comment.
std::string_view TakeWord(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(Blanks), line.size()));
  if (line.starts_with("//")) line = {};
  const bool quoted = line.starts_with('"');
  if (quoted) line.remove_prefix(1);
  const size_t end = std::min(quoted ? line.find('"') : line.find_first_of(Blanks), line.size());
  const std::string_view word = line.substr(0, end);
  line.remove_prefix(std::min(end + (quoted ? 1 : 0), line.size()));
  return word;
}

/// Sets one option. Empty, or what is wrong.
std::string SetOption(TextureOptions& options, std::string_view name, std::string_view value) {
  size_t length = 0;
  const int32_t number = core::ParseWhole(value, &length);
  const bool isWhole = length == value.size() && !value.empty();
  const std::string quoted = '"' + std::string(name) + '"';
  for (const Switch& each : Switches) {
    if (!core::EqualIgnoringCase(each.Name, name)) continue;
    if (!value.empty() && !isWhole) return quoted + " takes 0 or 1";
    options.*each.Value = value.empty() || number != 0;
    return {};
  }
  for (const Whole& each : Wholes) {
    if (!core::EqualIgnoringCase(each.Name, name)) continue;
    if (!isWhole || number < each.Least || number > each.Most || (each.PowerOfTwo && (number & (number - 1)) != 0)) {
      return quoted + " takes " + (each.PowerOfTwo ? "a power of two" : "a number from 0 on");
    }
    options.*each.Value = number;
    if (each.Second != nullptr) options.*each.Second = number;
    return {};
  }
  if (core::EqualIgnoringCase(name, "bumpscale")) {
    const double scale = core::ParseReal(value, &length);
    if (length == 0 || length != value.size() || !(scale - scale == 0)) return quoted + " takes a number";
    options.BumpScale = static_cast<float>(scale);
    return {};
  }
  return "unknown option " + quoted;
}

}  // namespace

TextureOptions ParseTextureOptions(std::string_view text, std::vector<std::string>& warnings) {
  TextureOptions options;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // the mark that some editors put before UTF-8
  for (int number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::string_view name = TakeWord(line);
    const std::string_view value = TakeWord(line);
    if (name.empty()) continue;
    const std::string fault = SetOption(options, name, value);
    if (!fault.empty()) warnings.push_back("line " + std::to_string(number) + ": " + fault);
  }
  return options;
}

}  // namespace tarnwick::textures
