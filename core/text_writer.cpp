#include "core/text_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <mutex>
#include <utility>

namespace tarnwick::core {

namespace {

/// Buffers of writers that are done, for the next ones. Memory of that size costs more to give back and ask for than
/// many a file does that is written. (Not of each thread its own: what a thread leaves behind is gone before it is
/// taken away in programs that GCC makes for Windows.)
template <typename Buffer>
class SpareBuffers {
 public:
  static SpareBuffers& All() {
    static SpareBuffers all;
    return all;
  }

  /// Null where there is none.
  Buffer Take() {
    const std::lock_guard lock(m_lock);
    return m_count > 0 ? std::move(m_buffers[--m_count]) : nullptr;
  }

  void Keep(Buffer buffer) {
    const std::lock_guard lock(m_lock);
    if (m_count < m_buffers.size()) m_buffers[m_count++] = std::move(buffer);
  }

 private:
  std::mutex m_lock;
  std::array<Buffer, 16> m_buffers;
  size_t m_count = 0;
};

}  // namespace

TextWriter::Buffer TextWriter::TakeBuffer() {
  Buffer spare = SpareBuffers<Buffer>::All().Take();
  return spare ? std::move(spare) : std::make_unique_for_overwrite<Page[]>(PageCount);
}

void TextWriter::KeepBuffer(Buffer buffer) {
  SpareBuffers<Buffer>::All().Keep(std::move(buffer));
}

TextWriter::TextWriter(OutputFile& target)
    : m_file(&target), m_buffer(TakeBuffer()), m_next(Start()), m_end(m_next + PageCount * sizeof(Page)) {}

TextWriter::TextWriter(std::string& target)
    : m_string(&target), m_buffer(TakeBuffer()), m_next(Start()), m_end(m_next + PageCount * sizeof(Page)) {}

TextWriter::~TextWriter() {
  Flush();
  KeepBuffer(std::move(m_buffer));
}

void TextWriter::HandOver(size_t bytes) {
  const std::string_view text(Start(), bytes);
  m_flushed += bytes;
  if (m_file != nullptr) {
    m_file->Write(text);
  } else {
    m_string->append(text);
  }
}

void TextWriter::Flush() {
  HandOver(static_cast<size_t>(m_next - Start()));
  m_next = Start();
}

/// The system fills a page that is not written as a whole, and looks for it again when the rest comes.
void TextWriter::FlushPages() {
  const auto kept = static_cast<size_t>(BytesWritten() % sizeof(Page));
  const auto whole = static_cast<size_t>(m_next - Start()) - kept;
  HandOver(whole);
  std::memmove(Start(), Start() + whole, kept);
  m_next = Start() + kept;
}

void TextWriter::Raw(std::string_view bytes) {
  while (true) {
    // The bound of a copy must not show: a compiler that sees it takes an instruction that is slow to begin.
    const auto room = static_cast<size_t>(m_end - m_next);
    if (bytes.size() <= room) break;
    std::memcpy(m_next, bytes.data(), room);
    m_next += room;
    bytes.remove_prefix(room);
    Flush();
  }
  if (bytes.empty()) return;  // which may be nowhere
  std::memcpy(m_next, bytes.data(), bytes.size());
  m_next += bytes.size();
}

void TextWriter::Text(std::string_view text) {
  if constexpr (PlatformLineEnd == "\n") {
    Raw(text);
  } else {
    while (true) {
      const size_t end = text.find('\n');
      Raw(text.substr(0, end));
      if (end == std::string_view::npos) return;
      Raw(PlatformLineEnd);
      text.remove_prefix(end + 1);
    }
  }
}

void TextWriter::FormatList(std::string_view pattern, std::initializer_list<TextArgument> arguments) {
  const TextArgument* next = arguments.begin();
  size_t at = 0;
  while (at < pattern.size()) {
    const size_t percent = std::min(pattern.find('%', at), pattern.size());
    Text(pattern.substr(at, percent - at));
    if (percent == pattern.size()) break;
    at = percent + 1;
    const PatternPlace place = ReadPlace(pattern, at);
    if (place.Conversion == '%') {
      Char('%');
      continue;
    }
    const TextArgument& argument = *next++;
    if (place.Conversion == 's') {
      Text(argument.Text());
    } else if (place.Conversion == 'd') {
      Reserve(LongestNumberText);
      m_next = WriteIntegerWide(m_next, argument.Integer(), std::min(place.Width, 32));
    } else {
      const bool narrow = argument.GetKind() == TextArgument::Kind::Float && place.Width <= 3;
      if (narrow && (place.Precision == 6 || place.Precision < 0)) {
        Fixed<6>(argument.Float());
      } else if (narrow && place.Precision == 3) {
        Fixed<3>(argument.Float());
      } else if (narrow && place.Precision == 2) {
        Fixed<2>(argument.Float());
      } else {
        const double value =
            argument.GetKind() == TextArgument::Kind::Float ? static_cast<double>(argument.Float()) : argument.Double();
        const std::string text = FixedText(value, place.Precision < 0 ? 6 : std::min(place.Precision, 20));
        for (size_t blank = text.size(); blank < static_cast<size_t>(std::min(place.Width, 32)); ++blank) Char(' ');
        Raw(text);
        if (!std::isfinite(value)) ++m_nonFinite;
      }
    }
  }
}

}  // namespace tarnwick::core
