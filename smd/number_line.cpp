#include "smd/number_line.h"

#if TARNWICK_HAS_AVX_CODE

#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace tarnwick::smd {

// First the words of the whole line are found, 64 letters at a time; then each number is read from its end backwards,
// where its decimals and its point have fixed places, four numbers side by side. So no number waits for the one before.

namespace {

constexpr size_t Block = 64;
constexpr size_t MostBlocks = 4;
constexpr size_t MostLetters = MostBlocks * Block;
constexpr size_t Batch = 8;  // words are noted so many at a time, as how many there are is hard to guess
constexpr size_t Half = 16;  // bytes of a register; a number is read from so many letters that end with it

/// The words of a line by their places in it.
struct Words {
  static constexpr size_t Most = MostLetters / 2 + Batch;

  uint16_t Begins[Most];      // set only if Apart
  uint16_t Behind[Most + 1];  // the place behind the blank behind the word before
  size_t Count = 0;
  size_t LineEnd = 0;
  bool Apart = false;  // whether blanks stand side by side, so that words do not begin behind the first of them
};
struct Word {
  uint32_t Begin, End;
  uint32_t Length() const { return End - Begin; }
};

template <bool Apart>
TARNWICK_INLINE Word WordAt(const Words& words, size_t i) {
  return {Apart ? words.Begins[i] : words.Behind[i], words.Behind[i + 1] - 1U};
}

template <typename T>
using Constant = std::array<T, 2 * Half / sizeof(T)>;

/// The same in both halves of a register.
template <typename T, size_t Count>
constexpr Constant<T> Twice(const T (&half)[Count]) {
  Constant<T> whole{};
  for (size_t i = 0; i < whole.size(); ++i) whole[i] = half[i % Count];
  return whole;
}

// A letter by its lowest four bits, where the set has one with these; elsewhere one that has others.
alignas(32) constexpr auto BlanksAndEnds = Twice<int8_t>({' ', 0, 0, 0, 0, 0, 0, 0, 0, '\t', '\n', '\v', '\f', '\r', 0,
                                                          0});
alignas(32) constexpr auto LineEndsOnly = Twice<int8_t>({1, 0, 0, 0, 0, 0, 0, 0, 0, 0, '\n', 0, 0, '\r', 0, 0});

// The last 16 letters of a number: up to nine digits, the point, six decimals.
alignas(32) constexpr auto Zeros = Twice<int8_t>({'0', '0', '0', '0', '0', '0', '0', '0', '0', '.', '0', '0', '0', '0',
                                                  '0', '0'});
alignas(32) constexpr auto Most = Twice<int8_t>({9, 9, 9, 9, 9, 9, 9, 9, 9, 0, 9, 9, 9, 9, 9, 9});
alignas(32) constexpr auto Tens = Twice<int8_t>({10, 1, 10, 1, 10, 1, 10, 1, 1, 0, 10, 1, 10, 1, 10, 1});
alignas(32) constexpr auto Hundreds = Twice<int16_t>({100, 1, 100, 1, 100, 1, 100, 1});
alignas(32) constexpr auto TenThousands = Twice<int16_t>({10000, 1, 10000, 1, 10000, 1, 10000, 1});

/// Nothing, then all bits: loaded from `Kept[n]` on, a mask of the last n bytes of half a register.
constexpr auto Kept = [] {
  std::array<uint8_t, Half + MostLetters> bytes{};
  std::fill(bytes.begin() + Half, bytes.end(), uint8_t{0xFF});
  return bytes;
}();
/// Not 0 for a count of letters that no number has which is read here: the point, the decimals, some digits.
constexpr auto WrongLengths = [] {
  std::array<uint8_t, MostLetters> lengths{};
  for (size_t i = 0; i < lengths.size(); ++i) lengths[i] = i < 7 || i >= Half ? 1 : 0;
  return lengths;
}();
/// Which of four floats are negative, by a bit for each.
constexpr auto Signs = [] {
  std::array<std::array<uint32_t, 4>, 16> signs{};
  for (uint32_t i = 0; i < 16; ++i) signs[i] = {i << 31, i >> 1 << 31, i >> 2 << 31, i >> 3 << 31};
  return signs;
}();

/// What is found wrong on the way; looked at once, at the line's end.
struct Doubts {
  __m256i Wrong;  // not 0 where a letter is no digit or a number lies between two floats
  uint32_t Shape = 0;
};

TARNWICK_INLINE TARNWICK_AVX2 __m256i Load(const void* from) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}
TARNWICK_INLINE TARNWICK_AVX2 __m128i LoadHalf(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
/// Two halves of a register from two places.
TARNWICK_INLINE TARNWICK_AVX2 __m256i LoadTwo(const void* low, const void* high) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadHalf(low)), LoadHalf(high), 1);
}

/// One bit for each of 64 letters that is in `set`: a table by a letter's low four bits of the letter with these bits.
TARNWICK_INLINE TARNWICK_AVX2 uint64_t Find(__m256i low, __m256i high, __m256i set) {
  const __m256i lowSame = _mm256_cmpeq_epi8(low, _mm256_shuffle_epi8(set, low));
  const __m256i highSame = _mm256_cmpeq_epi8(high, _mm256_shuffle_epi8(set, high));
  return static_cast<uint32_t>(_mm256_movemask_epi8(lowSame)) |
         uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(highSame))} << 32;
}

/// Notes the places of all set bits, counted from `start` on.
TARNWICK_INLINE TARNWICK_AVX2 void NotePlaces(uint64_t bits, size_t count, size_t start, uint16_t* places) {
  for (size_t done = 0; done < count; done += Batch) {
    for (size_t i = 0; i < Batch; ++i) {
      places[done + i] = static_cast<uint16_t>(start + static_cast<size_t>(std::countr_zero(bits)));
      bits &= bits - 1;
    }
  }
}

/// Finds the words of the line at `at`. False where it is longer than a few blocks or too near to the text's end.
template <bool Apart>
TARNWICK_INLINE TARNWICK_AVX2 bool FindWords(const char* at, const char* end, Words& words) {
  const __m256i blanksAndEnds = Load(BlanksAndEnds.data()), lineEnds = Load(LineEndsOnly.data());
  uint64_t before = 1;  // whether a blank ends the block before
  uint64_t sideBySide = 0;
  size_t count = 0;
  [[maybe_unused]] size_t begins = 0;
  words.Behind[0] = 0;
  for (size_t start = 0; start < MostLetters; start += Block) {
    if (static_cast<size_t>(end - at) < start + Block) return false;
    const char* from = at + start;
    const __m256i low = Load(from), high = Load(from + 32);
    const uint64_t blanks = Find(low, high, blanksAndEnds), ends = Find(low, high, lineEnds);
    const uint64_t upToEnd = ends ^ (ends - 1);  // all where there is none
    const uint64_t afterBlanks = blanks << 1 | before;
    const uint64_t wordEnds = blanks & ~afterBlanks & upToEnd;
    const auto found = static_cast<size_t>(std::popcount(wordEnds));
    NotePlaces(wordEnds, found, start + 1, words.Behind + count + 1);
    if constexpr (Apart) {
      const uint64_t wordBegins = ~blanks & afterBlanks & upToEnd;
      const auto begun = static_cast<size_t>(std::popcount(wordBegins));
      NotePlaces(wordBegins, begun, start, words.Begins + begins);
      begins += begun;
    }
    sideBySide |= blanks & afterBlanks & upToEnd;
    count += found;
    if (ends != 0) {
      words.Count = count;
      words.Apart = sideBySide != 0;
      words.LineEnd = start + static_cast<size_t>(std::countr_zero(ends));
      return true;
    }
    before = blanks >> 63;
  }
  return false;
}

/// Two numbers: in each half of the register the digits as four numbers of up to four digits, the last two of seven
/// digits together. A bit for each tells in `minus` which are negative.
TARNWICK_INLINE TARNWICK_AVX2 __m256i ReadDigits(const char* at, Word first, Word second, uint32_t& minus,
                                                 Doubts& doubts) {
  const uint32_t firstMinus = at[first.Begin] == '-' ? 1 : 0, secondMinus = at[second.Begin] == '-' ? 1 : 0;
  const uint32_t firstLength = first.Length() - firstMinus, secondLength = second.Length() - secondMinus;
  minus = firstMinus + 2 * secondMinus;
  doubts.Shape |= WrongLengths.data()[firstLength];
  doubts.Shape |= WrongLengths.data()[secondLength];
  __m256i digits = LoadTwo(at + first.End - Half, at + second.End - Half);
  digits = _mm256_xor_si256(digits, Load(Zeros.data()));
  digits = _mm256_and_si256(digits, LoadTwo(Kept.data() + firstLength, Kept.data() + secondLength));
  doubts.Wrong = _mm256_or_si256(doubts.Wrong, _mm256_subs_epu8(digits, Load(Most.data())));
  return _mm256_madd_epi16(_mm256_maddubs_epi16(digits, Load(Tens.data())), Load(Hundreds.data()));
}

/// The numbers of four words.
TARNWICK_INLINE TARNWICK_AVX2 __m128 ReadFour(const char* at, const Word (&words)[4], Doubts& doubts) {
  uint32_t minus = 0, otherMinus = 0;
  const __m256i digits = ReadDigits(at, words[0], words[1], minus, doubts);
  const __m256i otherDigits = ReadDigits(at, words[2], words[3], otherMinus, doubts);
  // Each as its digits but the last seven, and those.
  const __m256i mixed = _mm256_madd_epi16(_mm256_packs_epi32(digits, otherDigits), Load(TenThousands.data()));
  const __m256i halves = _mm256_permutevar8x32_epi32(mixed, _mm256_setr_epi32(0, 4, 2, 6, 1, 5, 3, 7));
  const __m256d high = _mm256_cvtepi32_pd(_mm256_castsi256_si128(halves));
  const __m256d low = _mm256_cvtepi32_pd(_mm256_extracti128_si256(halves, 1));
  // Two products and a sum are off by less than three steps of a double. Where a float's edge, the middle between two,
  // is no further away, they may not be told apart.
  const __m256d wide = _mm256_fmadd_pd(high, _mm256_set1_pd(10), _mm256_mul_pd(low, _mm256_set1_pd(1e-6)));
  constexpr int32_t Steps = 4, Middle = 1 << 28, Below = (1 << 29) - 1;
  const __m256i fromEdge = _mm256_add_epi32(_mm256_castpd_si256(wide), _mm256_set1_epi32(Steps - Middle));
  const __m256i near =
      _mm256_cmpgt_epi32(_mm256_set1_epi64x(2 * Steps), _mm256_and_si256(fromEdge, _mm256_set1_epi64x(Below)));
  doubts.Wrong = _mm256_or_si256(doubts.Wrong, near);
  const __m128 signs = _mm_castsi128_ps(LoadHalf(Signs.data() + (minus + 4 * otherMinus)));
  return _mm_xor_ps(_mm256_cvtpd_ps(wide), signs);
}

/// A whole number of up to four digits without a sign.
TARNWICK_INLINE int32_t ReadWhole(const char* at, Word word, Doubts& doubts) {
  constexpr uint32_t EveryByte = 0x01010101;
  const uint32_t length = word.Length();
  uint32_t digits = 0;
  std::memcpy(&digits, at + word.End - sizeof digits, sizeof digits);
  digits = (digits ^ '0' * EveryByte) & ~uint32_t{0} << (32 - 8 * length) % 32;
  doubts.Shape |= uint32_t{length - 1 > 3} | (((digits + 0x76 * EveryByte) | digits) & 0x80 * EveryByte);
  // Neighbours are joined to pairs, pairs to the whole.
  const uint32_t pairs = (digits * (10 * 256 + 1) >> 8) & 0x00FF00FF;
  return static_cast<int32_t>(pairs * (100 * 65536 + 1) >> 16);
}

/// The links whose first word is number `i`.
template <bool Apart>
TARNWICK_INLINE TARNWICK_AVX2 void ReadLinks(const char* at, const Words& words, size_t i, NumberLine& line,
                                             Doubts& doubts) {
  const size_t count = line.LinkCount;
  if (count == 0) return;
  // Where there are fewer than two or four, the first stands for what is missing.
  const Word first = WordAt<Apart>(words, i + 1), second = count > 1 ? WordAt<Apart>(words, i + 3) : first;
  float weights[NumberLine::MostLinks];
  if (count <= 2) {
    _mm_storeu_ps(weights, ReadFour(at, {first, second, first, second}, doubts));
  } else {
    const Word third = WordAt<Apart>(words, i + 5), fourth = count > 3 ? WordAt<Apart>(words, i + 7) : first;
    _mm_storeu_ps(weights, ReadFour(at, {first, second, third, fourth}, doubts));
  }
  for (size_t link = 0; link < count; ++link) {
    line.Links[link] = {ReadWhole(at, WordAt<Apart>(words, i + 2 * link), doubts), weights[link]};
  }
}

template <bool Apart>
TARNWICK_INLINE TARNWICK_AVX2 const char* ReadWords(const char* at, const Words& words, NumberLineKind kind,
                                                    NumberLine& line) {
  const auto values = static_cast<size_t>(kind);
  if (words.Count < 1 + values) return nullptr;
  Doubts doubts{_mm256_setzero_si256()};
  line.Number = ReadWhole(at, WordAt<Apart>(words, 0), doubts);
  const auto word = [&words](size_t i) { return WordAt<Apart>(words, i); };
  float* value = line.Values.data();
  _mm_storeu_ps(value, ReadFour(at, {word(1), word(2), word(3), word(4)}, doubts));
  line.LinkCount = 0;
  if (kind == NumberLineKind::Place) {
    _mm_storeu_ps(value + 4, ReadFour(at, {word(5), word(6), word(5), word(6)}, doubts));
  } else {
    _mm_storeu_ps(value + 4, ReadFour(at, {word(5), word(6), word(7), word(8)}, doubts));
    if (words.Count > 1 + values) {
      const auto links = static_cast<size_t>(ReadWhole(at, word(9), doubts));
      if (links > NumberLine::MostLinks || words.Count < 2 + values + 2 * links) return nullptr;
      line.LinkCount = links;
      ReadLinks<Apart>(at, words, 10, line, doubts);
    }
  }
  if (doubts.Shape != 0 || _mm256_testz_si256(doubts.Wrong, doubts.Wrong) == 0) return nullptr;
  return at + words.LineEnd;
}

}  // namespace

TARNWICK_AVX2 const char* ReadNumberLineAvx2(std::string_view text, const char* at, NumberLineKind kind,
                                             NumberLine& line) {
  if (at - text.data() < static_cast<ptrdiff_t>(Half)) return nullptr;
  const char* end = text.data() + text.size();
  Words words;
  if (!FindWords<false>(at, end, words)) return nullptr;
  if (!words.Apart) return ReadWords<false>(at, words, kind, line);
  FindWords<true>(at, end, words);
  return ReadWords<true>(at, words, kind, line);
}

}  // namespace tarnwick::smd

#endif
