// Opens any bytes as a GMA addon: what follows the first byte, as it is or, if that byte is odd, packed in LZMA, so
// that damage gets behind the packing.

#include <lzma.h>

#include <vector>

#include "archive_source.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  if ((data[0] & 1) == 0) {
    tarnwick::fuzz::WalkArchive(data + 1, size - 1);
    return 0;
  }
  lzma_options_lzma options;
  lzma_lzma_preset(&options, 0);
  options.dict_size = 1 << 16;
  lzma_stream stream = LZMA_STREAM_INIT;
  if (lzma_alone_encoder(&stream, &options) != LZMA_OK) return 0;
  std::vector<uint8_t> packed(size * 2 + 256);
  stream.next_in = data + 1;
  stream.avail_in = size - 1;
  stream.next_out = packed.data();
  stream.avail_out = packed.size();
  const bool whole = lzma_code(&stream, LZMA_FINISH) == LZMA_STREAM_END;
  const size_t packedSize = packed.size() - stream.avail_out;
  lzma_end(&stream);
  if (whole) tarnwick::fuzz::WalkArchive(packed.data(), packedSize);
  return 0;
}
