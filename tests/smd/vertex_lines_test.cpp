#include "smd/vertex_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace tarnwick::smd {
namespace {

std::string PrintedFloat(float value) {
  char text[core::LongestNumberText];
  std::snprintf(text, sizeof text, " %f", static_cast<double>(value));
  return text;
}

std::string PrintedLine(const Vertex& vertex, bool withLinks) {
  std::string line = std::to_string(vertex.Bone);
  for (const float value : {vertex.Position.X, vertex.Position.Y, vertex.Position.Z, vertex.Normal.X, vertex.Normal.Y,
                            vertex.Normal.Z, vertex.U, vertex.V}) {
    line += PrintedFloat(value);
  }
  if (withLinks) line += ' ' + std::to_string(vertex.LinkCount);
  for (int32_t i = 0; withLinks && i < vertex.LinkCount; ++i) {
    const Link& link = vertex.Links[static_cast<size_t>(i)];
    line += ' ' + std::to_string(link.Bone) + PrintedFloat(link.Weight);
  }
  return line.append(core::PlatformLineEnd);
}

TEST(VertexLines, ArePrintedAsPrintfDoesAtEveryLevel) {
  std::mt19937 random(20240607);
  const auto usual = [&] { return static_cast<float>(static_cast<int32_t>(random())) / 0x1p24F; };
  // Of any size and kind; halves of the last decimal; one of the whole numbers around which the text grows longer.
  const auto unusual = [&] {
    const auto bits = static_cast<uint32_t>(random());
    float value = std::bit_cast<float>(bits);
    if (bits % 4 == 1) value = static_cast<float>(static_cast<int32_t>(bits) >> 16) / 128;
    if (bits % 4 == 2) value = static_cast<float>(std::pow(10, bits % 5)) - (bits % 3 == 0 ? 5e-7F : 0);
    return std::isnan(value) ? -0.0F : value;  // the sign of some is another on other systems
  };
  for (int i = 0; i < 40'000 && !::testing::Test::HasFailure(); ++i) {
    Vertex vertex;
    const bool isUsual = i % 2 == 0;
    const auto next = [&] { return isUsual || random() % 4 != 0 ? usual() : unusual(); };
    vertex.Bone = isUsual ? static_cast<int32_t>(random() % 1100) : static_cast<int32_t>(random());
    vertex.Position = {next(), next(), next()};
    vertex.Normal = {next(), next(), next()};
    vertex.U = next();
    vertex.V = next();
    vertex.LinkCount = static_cast<int32_t>(random() % 4);
    for (Link& link : vertex.Links) link = {static_cast<int32_t>(random() % 300), random() % 3 == 0 ? 1.0F : next()};
    for (const bool withLinks : {true, false}) {
      for (int level = 0; level <= static_cast<int>(core::HighestVectorLevel()); ++level) {
        char text[LongestVertexLine];
        char* const end = WriteVertexLine(text, vertex, withLinks, static_cast<core::VectorLevel>(level));
        EXPECT_EQ(std::string(text, end), PrintedLine(vertex, withLinks)) << "level " << level;
      }
    }
  }
}

TEST(VertexLines, AreCopiedWhereTheirKeyIsMetAgainAndCountNumbersThatAreNotFinite) {
  std::string text, expected;
  uint64_t nonFinite = 0;
  core::TextWriter writer(text);
  VertexLines lines(writer, true);
  const MaterialLine material("brick"), longMaterial(std::string(100, 'm')), brokenMaterial("a\nb");
  for (uint64_t i = 0; i < 9000; ++i) {
    const uint64_t key = i % 7 == 0 ? i * 37 % 5000 : i / 6;  // near ones, and far ones that share their place
    Vertex vertex;
    vertex.Position = {static_cast<float>(key), key == 3 ? INFINITY : 1e20F, -0.5F};
    vertex.LinkCount = static_cast<int32_t>(key % 4);
    for (Link& link : vertex.Links) link = {static_cast<int32_t>(key), 0.25F};
    lines.Write(key, [&] { return vertex; });
    expected += PrintedLine(vertex, true);
    nonFinite += key == 3 ? 1 : 0;
    if (i % 100 != 0) continue;
    for (const MaterialLine* line : {&material, &longMaterial, &brokenMaterial}) line->Write(writer);
    const std::string end(core::PlatformLineEnd);
    expected += "brick.tga" + end + std::string(100, 'm') + ".tga" + end + "a" + end + "b.tga" + end;
  }
  writer.Flush();
  EXPECT_EQ(text, expected);
  EXPECT_EQ(writer.NonFiniteCount(), nonFinite);
}

TEST(LineList, WritesTrianglesAtEveryLevelButThoseItDoesNotHold) {
  constexpr size_t Infinite = 5, Long = 9, Count = 40;
  std::vector<Vertex> vertices(Count);
  for (size_t i = 0; i < Count; ++i) {
    const auto number = static_cast<float>(i);
    vertices[i].Position = {-number * 20, number / 7, i == Infinite ? INFINITY : 0.5F};
    vertices[i].LinkCount = static_cast<int32_t>(i % 4);
    for (Link& link : vertices[i].Links) link = {static_cast<int32_t>(i * 30), i % 8 < 4 ? 0.25F : 1234.5F};
    if (i == Long) vertices[i].Normal = vertices[i].Position = {1e38F, 1e38F, 1e38F};
  }
  LineList lines(Count);
  lines.Add(std::span(vertices).first(15), true);
  lines.Add(std::span(vertices).subspan(15), true);
  for (const std::string& material : {std::string("brick"), std::string(100, 'm')}) {  // a usual line, a long one
    for (int level = 0; level <= static_cast<int>(core::HighestVectorLevel()); ++level) {
      std::string text, expected;
      core::TextWriter writer(text);
      const MaterialLine line(material);
      for (size_t i = 0; i < 20'000; ++i) {
        const std::array corners = {i % Count,       (i + 1) % Count, i % Count,       i * 7 % Count, i % Count,
                                    (i + 2) % Count, i * 11 % Count,  i % (Count + 1), i % 3};
        const auto isHeld = [](size_t number) { return number < Count && number != Infinite && number != Long; };
        const auto firstOther = std::find_if_not(corners.begin(), corners.end(), isHeld);
        const auto held = static_cast<size_t>(firstOther - corners.begin()) / 3;
        ASSERT_EQ(lines.WriteTriangles(writer, line, corners, static_cast<core::VectorLevel>(level)), held);
        for (size_t k = 0; k < 3 * held; ++k) {
          if (k % 3 == 0) expected += material + ".tga" + std::string(core::PlatformLineEnd);
          expected += PrintedLine(vertices[corners[k]], true);
        }
      }
      writer.Flush();
      EXPECT_TRUE(text == expected) << "level " << level;
    }
  }
}

}  // namespace
}  // namespace tarnwick::smd
