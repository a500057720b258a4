#include "bench/plain_smd.h"

#include <cstdlib>
#include <cstring>

namespace tarnwick::bench {

namespace {

/// Whether `line` has so many tokens; it is cut up.
bool HasTokens(char* line, int count) {
  char* token = std::strtok(line, " ");
  for (int i = 1; i < count && token != nullptr; ++i) token = std::strtok(nullptr, " ");
  return token != nullptr;
}

bool IsVertex(char* line) {
  if (!HasTokens(line, 9)) return false;
  const char* links = std::strtok(nullptr, " ");
  const int count = links != nullptr ? std::atoi(links) : 0;
  for (int i = 0; i < 2 * count; ++i) {
    if (std::strtok(nullptr, " ") == nullptr) return false;
  }
  return true;
}

void AddFace(smd::SmdSummary& summary, const char* name) {
  for (smd::SmdMaterialCount& material : summary.Materials) {
    if (material.Name == name) {
      ++material.FaceCount;
      return;
    }
  }
  summary.Materials.push_back({name, 1});
}

}  // namespace

void ScanPlainly(std::FILE* file, smd::SmdSummary& summary) {
  char buffer[500];
  bool nodes = false, skeleton = false, triangles = false;
  int position = 0;
  while (std::fgets(buffer, sizeof buffer, file) != nullptr) {
    char* line = buffer + std::strspn(buffer, " ");
    line[std::strlen(line) - 1] = 0;
    if ((nodes || skeleton || triangles) && std::strncmp(line, "end", 3) == 0) {
      nodes = skeleton = triangles = false;
    } else if (nodes) {
      if (!HasTokens(line, 3)) return;
      ++summary.BoneCount;
    } else if (skeleton) {
      if (std::strncmp(line, "time", 4) == 0) {
        ++summary.FrameCount;
      } else if (!HasTokens(line, 7)) {
        return;
      }
    } else if (triangles) {
      if (position == 0) {
        const char* name = std::strtok(line, " \t\r");
        if (name == nullptr) return;
        AddFace(summary, name);
        ++summary.TriangleCount;
      } else if (!IsVertex(line)) {
        return;
      }
      position = (position + 1) % 4;
    } else {
      triangles = std::strncmp(line, "triangles", 9) == 0;
      nodes = std::strncmp(line, "nodes", 5) == 0;
      skeleton = std::strncmp(line, "skeleton", 8) == 0;
    }
  }
}

void ReplacePlainly(const std::string& text, const std::string& from, const std::string& to, std::FILE* out) {
  for (size_t at = 0; at < text.size();) {
    if (std::strncmp(text.c_str() + at, from.c_str(), from.size()) == 0) {
      std::fputs(to.c_str(), out);
      at += from.size();
    } else {
      std::fputc(text[at++], out);
    }
  }
}

}  // namespace tarnwick::bench
