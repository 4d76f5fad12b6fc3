#include "configfiles/JsonBytes.h"

#include <algorithm>

#include "config/Latin1Text.h"

namespace sb {

Json JsonBytes(const std::string& bytes) { return Latin1ToUtf8(bytes); }

std::optional<std::string> BytesOfJson(const Json& value) {
    if (!value.is_string()) return std::nullopt;
    const auto& text = value.get_ref<const std::string&>();
    // The parser has checked the UTF-8, in which every character beyond
    // U+00FF starts with a byte from 0xC4 on.
    if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c >= 0xC4; })) return std::nullopt;
    return Utf8ToLatin1(text);
}

}  // namespace sb
