#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnwick::controls {

/// Replaces every known entity of `source`, such as `&lt;`, by two bytes, EntityMark and a code, so that what it
/// stands for is taken neither for a tag nor for a place to break a line. Names count in small letters only; an unknown
/// entity stays as text.
std::string MarkEntities(std::string_view source);

/// The byte in front of an entity's code.
inline constexpr char EntityMark = '\x01';

/// The text (UTF-8) of the marked entity at `marked[at]`, where EntityMark stands; moves `at` behind it. A code that
/// belongs to no entity gives a blank.
std::string_view TakeEntity(std::string_view marked, size_t& at);

/// `marked` with every marked entity replaced by its text.
std::string UnmarkEntities(std::string_view marked);

}  // namespace tarnwick::controls
