// Texture to TGA, 2048 by 2048 pixels, in memory: the plain way, the fast way, and the copying of as many bytes, which
// is what no decoder can beat.

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "bench/plain_texture.h"
#include "textures/picture_encode.h"
#include "textures/pixel_rows.h"
#include "textures/tga_writer.h"

namespace {

using namespace tarnwick;
using textures::PixelFormat;
using textures::PixelLayout;
using textures::StoredImage;

constexpr int Side = 2048;

/// Random pixels; the DXT1 blocks have four colours each, so that the image has no alpha, as most have none.
std::vector<std::byte> MakePixels(PixelFormat format) {
  const int64_t size = textures::ImageBytes(*textures::FindPixelFormat(format), Side, Side);
  std::vector<std::byte> bytes(static_cast<size_t>(size));
  std::mt19937 random(7);
  for (std::byte& byte : bytes) byte = std::byte(random() & 255);
  if (format != PixelFormat::Dxt1) return bytes;
  for (size_t block = 0; block < bytes.size(); block += 8) {
    bytes[block + 1] |= std::byte{0x80};
    bytes[block + 3] &= std::byte{0x7F};
  }
  return bytes;
}

struct Subject {
  explicit Subject(PixelFormat format)
      : Pixels(MakePixels(format)),
        Image{format, Side, Side, Pixels},
        Size(sizeof(textures::TgaHeader) + size_t{Side} * Side * static_cast<size_t>(BytesPerPixel(LayoutFor(Image)))),
        Out(std::make_unique<uint8_t[]>(Size)) {}

  std::vector<std::byte> Pixels;
  StoredImage Image;
  size_t Size;
  std::unique_ptr<uint8_t[]> Out;
};

void CountBytes(benchmark::State& state, const Subject& subject) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(subject.Size));
}

void Plain(benchmark::State& state, PixelFormat format) {
  Subject subject(format);
  for (auto _ : state) {
    const PixelLayout layout = LayoutFor(subject.Image);
    const textures::TgaHeader header = textures::MakeTgaHeader(Side, Side, layout);
    std::memcpy(subject.Out.get(), &header, sizeof header);
    bench::DecodePlainly(subject.Image, layout, subject.Out.get() + sizeof header);
    benchmark::ClobberMemory();
  }
  CountBytes(state, subject);
}

void Fast(benchmark::State& state, PixelFormat format) {
  Subject subject(format);
  for (auto _ : state) {
    const PixelLayout layout = LayoutFor(subject.Image);
    const textures::TgaHeader header = textures::MakeTgaHeader(Side, Side, layout);
    std::memcpy(subject.Out.get(), &header, sizeof header);
    const ptrdiff_t stride = Side * BytesPerPixel(layout);
    DecodeRows(subject.Image, 0, Side, layout, subject.Out.get() + sizeof header + (Side - 1) * stride, -stride);
    benchmark::ClobberMemory();
  }
  CountBytes(state, subject);
}

/// As the tool does it: band by band through a small buffer, from which the file is written (here: copied).
void Banded(benchmark::State& state, PixelFormat format) {
  Subject subject(format);
  for (auto _ : state) {
    uint8_t* out = subject.Out.get();
    WriteTga(subject.Image, LayoutFor(subject.Image), [&](std::string_view bytes) {
      std::memcpy(out, bytes.data(), bytes.size());
      out += bytes.size();
      return true;
    });
    benchmark::ClobberMemory();
  }
  CountBytes(state, subject);
}

void Copy(benchmark::State& state, PixelFormat format) {
  Subject subject(format);
  const std::vector<uint8_t> source(subject.Size, 1);
  for (auto _ : state) {
    std::memcpy(subject.Out.get(), source.data(), source.size());
    benchmark::ClobberMemory();
  }
  CountBytes(state, subject);
}

void Encode(benchmark::State& state, textures::FitEffort effort) {
  textures::Picture picture{256, 256, {}};
  std::mt19937 random(7);
  for (int i = 0; i < picture.Width * picture.Height; ++i) {
    const auto channel = [&](int base) { return static_cast<uint8_t>(base + static_cast<int>(random() & 31)); };
    picture.Pixels.push_back({channel(i % 220), channel(i / 300), channel(100), 255});
  }
  for (auto _ : state) benchmark::DoNotOptimize(textures::EncodePicture(picture, PixelFormat::Dxt1, effort));
}
BENCHMARK_CAPTURE(Encode, Best, textures::FitEffort::Best)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Encode, Quick, textures::FitEffort::Quick)->Unit(benchmark::kMillisecond)->UseRealTime();

#define TEXTURE_BENCHMARKS(name, format)                                  \
  BENCHMARK_CAPTURE(Plain, name, format)->Unit(benchmark::kMillisecond);  \
  BENCHMARK_CAPTURE(Fast, name, format)->Unit(benchmark::kMillisecond);   \
  BENCHMARK_CAPTURE(Banded, name, format)->Unit(benchmark::kMillisecond); \
  BENCHMARK_CAPTURE(Copy, name, format)->Unit(benchmark::kMillisecond)

TEXTURE_BENCHMARKS(Dxt1, PixelFormat::Dxt1);
TEXTURE_BENCHMARKS(Dxt5, PixelFormat::Dxt5);
TEXTURE_BENCHMARKS(Bgra8888, PixelFormat::Bgra8888);

}  // namespace
