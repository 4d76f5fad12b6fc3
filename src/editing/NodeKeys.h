#pragma once
#include <cstdint>
#include <string>

// What a node of the option tree is, read from its key alone:
// "CONFIGURATION" and an index for the root, "OPTION" and an index for an
// option, "OPTION", an index, "_VALUE" and an index for a list entry or a
// bit-field member. Each index is 8 hex digits.
namespace sb {

enum class NodeKind { Root, Option, Value };

NodeKind KindOfKey(const std::string& key);

// The indexes behind the words; a key too short, or an index beyond the
// 32-bit signed range, throws std::out_of_range.
int32_t OptionIndexOfKey(const std::string& key);
int32_t ValueIndexOfKey(const std::string& key);
// The configuration index that a root node holds in its tag.
int32_t IndexOfTag(const std::string& tag);

}  // namespace sb
