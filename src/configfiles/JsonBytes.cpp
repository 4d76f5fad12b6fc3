#include "configfiles/JsonBytes.h"

#include "config/Latin1Text.h"

namespace sb {

Json JsonBytes(const std::string& bytes) { return Latin1ToUtf8(bytes); }

std::optional<std::string> BytesOfJson(const Json& value) {
    if (!value.is_string()) return std::nullopt;
    const auto& text = value.get_ref<const std::string&>();
    // The parser has checked the UTF-8; a character beyond U+00FF is the one
    // thing that does not come back unchanged.
    std::string bytes = Utf8ToLatin1(text);
    if (Latin1ToUtf8(bytes) != text) return std::nullopt;
    return bytes;
}

}  // namespace sb
