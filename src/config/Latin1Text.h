#pragma once
#include <string>
#include <string_view>

// Catalog texts are bytes, one a character (Latin-1); XML parsers and
// terminals speak UTF-8. These convert between the two.
namespace sb {

std::string Latin1ToUtf8(std::string_view bytes);

// Characters up to U+00FF become their byte; any other character, and every
// broken sequence, becomes "?".
std::string Utf8ToLatin1(std::string_view text);

// Whether the text is made of whole UTF-8 sequences.
bool IsUtf8(std::string_view text);

}  // namespace sb
