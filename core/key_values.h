#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::core {

/// One key of a key-values text (gameinfo.txt, .vmt) with what stands behind it: a value, or a block of further keys.
///
///     "Key" "value" [$CONDITION]
///     Key { ... }
struct KeyValue {
  std::string Key = {};
  std::string Value = {};               // "" for a block
  std::string Condition = {};           // with its brackets, "[$X360]"; "" for none
  bool IsBlock = false;                 // whether braces stood behind the key
  std::vector<KeyValue> Children = {};  // of a block, in their order; a key may stand there several times
  int Line = 0;                         // of the key, counted from 1

  /// The first child of that name without regard to ASCII case; null if there is none.
  const KeyValue* Find(std::string_view key) const;
};

/// What a key-values text holds, as far as it can be read.
struct KeyValues {
  std::vector<KeyValue> Roots;
  std::string Error;  // why reading ended early, with the line; "" if the text was read to its end

  /// The first root of that name without regard to ASCII case; null if there is none.
  const KeyValue* Find(std::string_view key) const;
};

/// Blocks inside one another that a text may have.
inline constexpr int MostKeyValueLevels = 64;

/// Reads a key-values text: words or texts in double quotes, which may run over several lines and know no escapes;
/// `//` where a word could begin starts a comment; blanks, line ends and other control bytes separate. A bracket that
/// `$` or `!` follows is a condition, of the value before it or of the block that begins behind it; any other bracket
/// in a value's place is a value to its closing bracket. What was read before an error is kept.
KeyValues ReadKeyValues(std::string_view text);

/// Whether a condition holds for a program on a PC: $WIN32, $WINDOWS and $PC do, every other name does not; `!`, `&&`
/// and `||` (which binds less) combine them. An empty condition holds, one that cannot be read does not.
bool ConditionHolds(std::string_view condition);

}  // namespace tarnwick::core
