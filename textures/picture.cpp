#include "textures/picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwick::textures {

namespace {

/// The direction of the sum of `count` normals, as a pixel; a sum without a direction points straight out.
Bgra DirectionOf(int blue, int green, int red, int count) {
  const auto part = [count](int sum) { return static_cast<float>(sum) / static_cast<float>(count) / 127.5f - 1; };
  float x = part(red), y = part(green), z = part(blue);
  const float length = std::sqrt(x * x + y * y + z * z);
  if (length < 1e-6f) {
    x = y = 0;
    z = 1;
  } else {
    x /= length, y /= length, z /= length;
  }
  const auto byte = [](float value) { return static_cast<uint8_t>(std::lround((value + 1) * 127.5f)); };
  return {byte(z), byte(y), byte(x), 0};
}

}  // namespace

bool UsesAlpha(const Picture& picture) {
  return std::any_of(picture.Pixels.begin(), picture.Pixels.end(), [](const Bgra& pixel) { return pixel.A != 255; });
}

std::array<float, 3> Reflectivity(const Picture& picture) {
  std::array<std::array<int64_t, 256>, 3> counts{};
  for (const Bgra& pixel : picture.Pixels) {
    ++counts[0][pixel.R];
    ++counts[1][pixel.G];
    ++counts[2][pixel.B];
  }
  std::array<float, 3> mean{};
  for (size_t channel = 0; channel < 3; ++channel) {
    double sum = 0;
    for (size_t value = 0; value < 256; ++value) {
      sum += static_cast<double>(counts[channel][value]) * std::pow(static_cast<double>(value) / 255, 2.2);
    }
    mean[channel] = static_cast<float>(sum / static_cast<double>(picture.Pixels.size()));
  }
  return mean;
}

Picture Halve(const Picture& picture, PictureKind kind, bool halveWidth, bool halveHeight) {
  const int stepX = halveWidth && picture.Width > 1 ? 2 : 1;
  const int stepY = halveHeight && picture.Height > 1 ? 2 : 1;
  const int count = stepX * stepY;
  Picture half{picture.Width / stepX, picture.Height / stepY, {}};
  half.Pixels.reserve(static_cast<size_t>(half.Width) * static_cast<size_t>(half.Height));
  for (int y = 0; y < half.Height; ++y) {
    const Bgra* upper = picture.Pixels.data() + int64_t{y} * stepY * picture.Width;
    const Bgra* lower = upper + (stepY - 1) * picture.Width;
    for (int x = 0; x < half.Width; ++x, upper += stepX, lower += stepX) {
      // A pixel that is its own neighbour counts twice, which changes no mean.
      const Bgra& a = upper[0];
      const Bgra& b = upper[stepX - 1];
      const Bgra& c = lower[0];
      const Bgra& d = lower[stepX - 1];
      const auto mean = [](int w, int e, int n, int s) { return static_cast<uint8_t>((w + e + n + s + 2) / 4); };
      Bgra pixel{mean(a.B, b.B, c.B, d.B), mean(a.G, b.G, c.G, d.G), mean(a.R, b.R, c.R, d.R),
                 mean(a.A, b.A, c.A, d.A)};
      if (kind == PictureKind::NormalMap && count > 1) {
        const uint8_t alpha = pixel.A;
        pixel = DirectionOf(a.B + b.B + c.B + d.B, a.G + b.G + c.G + d.G, a.R + b.R + c.R + d.R, 4);
        pixel.A = alpha;
      }
      half.Pixels.push_back(pixel);
    }
  }
  return half;
}

std::vector<Picture> MipChain(Picture picture, PictureKind kind) {
  std::vector<Picture> chain;
  chain.push_back(std::move(picture));
  while (chain.back().Width > 1 || chain.back().Height > 1) chain.push_back(Halve(chain.back(), kind, true, true));
  return chain;
}

}  // namespace tarnwick::textures
