// Writes the bundled sample:       make_sample DIRECTORY
// Tells whether it is up to date:  make_sample --check DIRECTORY

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "walker.h"

namespace {

bool IsCurrent(const std::string& path, const std::string& bytes) {
  std::ifstream file(path, std::ios::binary);
  const bool same = file && std::string(std::istreambuf_iterator<char>(file), {}) == bytes;
  if (!same) std::fprintf(stderr, "%s is not what make_sample writes\n", path.c_str());
  return same;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const bool check = argumentCount == 3 && std::string(arguments[1]) == "--check";
  if (argumentCount != 2 && !check) {
    std::fprintf(stderr, "usage: make_sample [--check] DIRECTORY\n");
    return 2;
  }
  const std::string folder = arguments[argumentCount - 1];
  const tarnwick::tests::ModelFiles files = tarnwick::samples::Walker().Build();
  if (!check) {
    std::printf("%s\n", files.Write(folder, "walker").c_str());
    return 0;
  }
  const bool mdl = IsCurrent(folder + "/walker.mdl", files.Mdl.Bytes());
  const bool vtx = IsCurrent(folder + "/walker.dx90.vtx", files.Vtx.Bytes());
  const bool vvd = IsCurrent(folder + "/walker.vvd", files.Vvd.Bytes());
  const bool phy = IsCurrent(folder + "/walker.phy", files.Phy);
  return mdl && vtx && vvd && phy ? 0 : 1;
}
