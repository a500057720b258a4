// Opens any bytes as a VPK directory file with all data inside.

#include "archive_source.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tarnwick::fuzz::WalkArchive(data, size);
  return 0;
}
