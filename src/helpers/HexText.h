#pragma once
#include <string>

// Conversions between hex text, byte strings and numbers. A byte string is a
// std::string holding any byte value, NUL included. Texts and byte strings of
// more than 32,767 characters, counts above 16,383 and, in NumberToHex, a
// first quotient from 2^31 on throw OverflowError (helpers/Overflow.h).
namespace sb {

std::string BytesToHexSpaced(const std::string& bytes);
std::string BytesToHex(const std::string& bytes);

// Exactly 2 x count digits; count is a 16-bit signed value up to 16,383.
// A value too large for the count loses its high bytes; a negative one gives
// the two's complement of its whole part; a count of 0 or below gives "".
std::string NumberToHex(const std::string& decimalText, int count, bool bigEndian);
// Decimal text of the first 2 x count digits, filled on the left (bigEndian)
// or on the right. A count of 0 or below gives "0".
std::string HexToNumber(const std::string& hexText, int count, bool bigEndian);

// Keeps only hex digits; an odd number of them gives an empty byte string and
// leaves the text alone, an even number replaces the text by the kept digits.
std::string HexToBytes(std::string& hexText);
// The same for a text the caller does not need back.
std::string HexToBytes(const std::string& hexText);

bool IsHexText(const std::string& text);
bool IsDecText(const std::string& text);

std::string Uint32ToHex(double value);      // 8 digits, most significant first
double HexToUint32(const std::string& hex);  // most significant first
std::string Uint32ToBytes(double value);     // 4 bytes, least significant first
double BytesToUint32(const std::string& bytes);

// Blanks, tabs, CR, LF and every "0X" removed, upper case; empty when what is
// left is not hex. The result may have an odd number of digits.
std::string NormalizeHex(const std::string& text);

}  // namespace sb
