#pragma once
#include <string>
#include <string_view>

// Catalog texts and the module's answers are bytes, one a character
// (Latin-1); XML parsers and terminals speak UTF-8. These convert between
// the two.
namespace sb {

std::string Latin1ToUtf8(std::string_view bytes);

// The one form in which such a text goes to a terminal: UTF-8, with every
// control character written as \xNN and the backslash doubled, so that no
// byte steers the terminal or breaks a line of the output.
std::string Latin1ToTerminal(std::string_view bytes);

// Characters up to U+00FF become their byte; any other character, and every
// broken sequence, becomes "?".
std::string Utf8ToLatin1(std::string_view text);

// The small letter of a Latin-1 capital (A-Z and À-Þ but ×); any other
// byte as it is. Searches by name go through it, so that "ä" finds "Ä".
char Latin1Lower(char c);

// Whether the text is made of whole UTF-8 sequences.
bool IsUtf8(std::string_view text);

}  // namespace sb
