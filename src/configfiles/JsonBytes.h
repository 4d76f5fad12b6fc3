#pragma once
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

// The module's texts are byte strings. In JSON each byte travels as the
// character of the same number, U+0000 to U+00FF, so that any reader gets
// the bytes back one for one, NUL and bytes from 0x80 on included.
namespace sb {

using Json = nlohmann::ordered_json;  // members in the order they are written

Json JsonBytes(const std::string& bytes);

// The bytes a JSON string carries; nothing when the value is no string or
// holds a character beyond U+00FF.
std::optional<std::string> BytesOfJson(const Json& value);

}  // namespace sb
