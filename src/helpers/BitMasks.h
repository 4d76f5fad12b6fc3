#pragma once
#include <string>

// Bit tests and bitwise combinations of hex texts and byte strings. Operands
// of different length are lined up at their right ends. The hex forms go
// through HexToBytes and BytesToHex, so a text beyond their limit throws
// OverflowError; TestBit and the byte forms throw nothing.
namespace sb {

// order 1: byte 0 is the last pair of the text; order 0: the first pair.
bool TestBit(const std::string& hexText, int bit, int order);

std::string HexAnd(const std::string& a, const std::string& b);
std::string HexNot(const std::string& a);
std::string HexOr(const std::string& a, const std::string& b);

void BytesAnd(std::string& a, const std::string& b);
void BytesNot(std::string& a);
void BytesOr(std::string& a, const std::string& b);

}  // namespace sb
