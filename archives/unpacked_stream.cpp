#include "archives/unpacked_stream.h"

#ifdef TARNWICK_HAS_LZMA
#include <lzma.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <vector>
#endif

namespace tarnwick::archives {

#ifdef TARNWICK_HAS_LZMA

namespace {

constexpr uint64_t MostDecoderMemory = uint64_t{272} << 20;  // a dictionary of 256 MiB, and what goes with it
constexpr size_t PieceSize = size_t{1} << 18;

/// The decoder's way from the first byte on.
class Decoder {
 public:
  explicit Decoder(const ByteSource& packed) : m_packed(packed), m_input(PieceSize) {}
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { lzma_end(&m_stream); }

  bool Begin(std::string& reason) {
    m_inputPlace = 0;
    m_ended = false;
    m_stream.avail_in = 0;
    if (lzma_alone_decoder(&m_stream, MostDecoderMemory) == LZMA_OK) return true;
    reason = "there is no memory to unpack it";
    return false;
  }

  /// The next unpacked bytes, `out` full of them except at the end; nothing after a failure.
  std::optional<size_t> Next(std::span<std::byte> out, std::string& reason) {
    m_stream.next_out = reinterpret_cast<uint8_t*>(out.data());
    m_stream.avail_out = out.size();
    while (m_stream.avail_out > 0 && !m_ended) {
      if (m_stream.avail_in == 0) {
        const auto got = m_packed.Read(m_inputPlace, std::as_writable_bytes(std::span(m_input)), reason);
        if (!got) return std::nullopt;
        m_inputPlace += *got;
        m_stream.next_in = m_input.data();
        m_stream.avail_in = *got;
      }
      const bool last = m_stream.avail_in == 0;
      const lzma_ret result = lzma_code(&m_stream, last ? LZMA_FINISH : LZMA_RUN);
      if (result == LZMA_STREAM_END) {
        m_ended = true;
      } else if (result != LZMA_OK) {
        reason = Words(result, last);
        return std::nullopt;
      }
    }
    return out.size() - m_stream.avail_out;
  }

 private:
  std::string Words(lzma_ret result, bool last) const {
    const std::string place = " (near byte " + std::to_string(m_inputPlace - m_stream.avail_in) + ")";
    if (last && result != LZMA_MEMLIMIT_ERROR) return "its packed data ends too early" + place;
    switch (result) {
      case LZMA_MEMLIMIT_ERROR:
        return "its packed data needs a dictionary of more than 256 MiB";
      case LZMA_MEM_ERROR:
        return "there is no memory to unpack it";
      case LZMA_FORMAT_ERROR:
        return "it is no file packed in LZMA";
      default:
        return "its packed data is damaged" + place;
    }
  }

  const ByteSource& m_packed;
  std::vector<uint8_t> m_input;
  uint64_t m_inputPlace = 0;
  lzma_stream m_stream = LZMA_STREAM_INIT;
  bool m_ended = false;
};

class UnpackedStream : public ByteSource {
 public:
  UnpackedStream(std::unique_ptr<ByteSource> packed, uint64_t keptBytes)
      : m_packed(std::move(packed)), m_decoder(*m_packed), m_mostKept(keptBytes / PieceSize) {}

  std::optional<size_t> Read(uint64_t offset, std::span<std::byte> out, std::string& reason) const override {
    const std::lock_guard lock(m_lock);
    size_t done = 0;
    while (done < out.size()) {
      const uint64_t place = offset + done;
      const Piece* piece = PieceAt(place / PieceSize, reason);
      if (piece == nullptr) {
        if (reason.empty()) break;  // behind the end
        return std::nullopt;
      }
      const size_t start = place % PieceSize;
      if (start >= piece->Size) break;
      const size_t size = std::min(piece->Size - start, out.size() - done);
      std::memcpy(out.data() + done, piece->Bytes.get() + start, size);
      done += size;
    }
    return done;
  }

  std::optional<uint64_t> Size() const override { return std::nullopt; }
  bool HasChanged() const override { return m_packed->HasChanged(); }

 private:
  struct Piece {
    std::unique_ptr<std::byte[]> Bytes;
    size_t Size = 0;
  };

  /// Piece number `number`; null behind the end, and with `reason` after a failure.
  const Piece* PieceAt(uint64_t number, std::string& reason) const {
    reason.clear();
    if (number < m_kept.size()) return &m_kept[number];
    if (number >= MostUnpackedBytes / PieceSize) {
      reason = "it unpacks to more than 4 GiB";
      return nullptr;
    }
    if (number >= m_failed) {  // not unpacked anew for every file behind the damage
      reason = m_failure;
      return nullptr;
    }
    if (m_hasPassing && number == m_next - 1) return &m_passing;
    if (m_next == NotBegun || number < m_next) {
      if (!m_decoder.Begin(reason)) return nullptr;
      m_next = 0;
      m_ended = false;
    }
    while (m_next <= number) {
      if (m_ended) return nullptr;
      if (!Unpack(reason)) {
        m_failed = m_next;
        m_failure = reason;
        m_next = NotBegun;
        m_hasPassing = false;
        return nullptr;
      }
    }
    return number < m_kept.size() ? &m_kept[number] : &m_passing;
  }

  /// Unpacks piece m_next, into memory if it is to be kept.
  bool Unpack(std::string& reason) const {
    const bool kept = m_next == m_kept.size() && m_next < m_mostKept;
    Piece fresh;
    Piece& piece = kept ? fresh : m_passing;
    if (piece.Bytes == nullptr) piece.Bytes = std::make_unique_for_overwrite<std::byte[]>(PieceSize);
    const auto got = m_decoder.Next({piece.Bytes.get(), PieceSize}, reason);
    if (!got) return false;
    piece.Size = *got;
    m_ended = *got < PieceSize;
    m_hasPassing = !kept;
    if (kept) m_kept.push_back(std::move(fresh));
    ++m_next;
    return true;
  }

  static constexpr uint64_t NotBegun = ~uint64_t{0};

  const std::unique_ptr<ByteSource> m_packed;
  mutable std::mutex m_lock;  // guards all below
  mutable Decoder m_decoder;
  mutable std::vector<Piece> m_kept;  // from the first on
  mutable Piece m_passing;            // piece m_next - 1, where that is not kept
  mutable bool m_hasPassing = false;
  mutable bool m_ended = false;
  mutable uint64_t m_next = NotBegun;    // the piece that the decoder gives next
  mutable uint64_t m_failed = NotBegun;  // the piece that cannot be unpacked, for the reason m_failure
  mutable std::string m_failure;
  const uint64_t m_mostKept;
};

}  // namespace

bool CanUnpack() {
  return true;
}

std::unique_ptr<ByteSource> UnpackStream(std::unique_ptr<ByteSource> packed, std::string&, uint64_t keptBytes) {
  return std::make_unique<UnpackedStream>(std::move(packed), keptBytes);
}

#else

bool CanUnpack() {
  return false;
}

std::unique_ptr<ByteSource> UnpackStream(std::unique_ptr<ByteSource>, std::string& reason, uint64_t) {
  reason = "it is packed, and this program was built without the library that unpacks it";
  return nullptr;
}

#endif

}  // namespace tarnwick::archives
