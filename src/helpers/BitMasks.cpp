#include "helpers/BitMasks.h"

#include "helpers/HexText.h"
#include "helpers/NumberScan.h"

namespace sb {
namespace {

// Combines a with b byte by byte from their right ends; the bytes at the
// start of a that b does not reach become 0.
template <typename Combine>
void CombineFromRight(std::string& a, const std::string& b, Combine combine) {
    auto ia = a.rbegin();
    for (auto ib = b.rbegin(); ia != a.rend() && ib != b.rend(); ++ia, ++ib)
        *ia = static_cast<char>(combine(static_cast<unsigned char>(*ia), static_cast<unsigned char>(*ib)));
    for (; ia != a.rend(); ++ia) *ia = '\0';
}

template <typename Combine>
std::string CombineHex(const std::string& a, const std::string& b, Combine combine) {
    std::string bytes = HexToBytes(a);
    CombineFromRight(bytes, HexToBytes(b), combine);
    return BytesToHex(bytes);
}

unsigned And(unsigned x, unsigned y) { return x & y; }
unsigned Or(unsigned x, unsigned y) { return x | y; }

}  // namespace

bool TestBit(const std::string& hexText, int bit, int order) {
    // Negative bits lie outside every text.
    if (bit < 0) return false;
    const size_t length = hexText.size();
    if (static_cast<size_t>(bit / 4) + 1 > length) return false;
    const int mask = 1 << (bit & 7);
    const size_t index = static_cast<size_t>(bit / 8);

    // A pair is read from the text padded with "00": in front of it for
    // order 1 (byte 0 is the last pair), behind it for order 0.
    size_t first;  // position of the pair in the padded text
    if (order == 1)
        first = length - 2 * index;
    else if (order == 0)
        first = 2 * index;
    else
        return false;
    const size_t padFront = order == 1 ? 2 : 0;
    auto at = [&](size_t position) {
        return position < padFront || position - padFront >= length ? '0' : hexText[position - padFront];
    };
    const int byte = ReadHexPair(at(first), at(first + 1));
    return (byte & mask) == mask;
}

std::string HexAnd(const std::string& a, const std::string& b) { return CombineHex(a, b, And); }

std::string HexNot(const std::string& a) {
    std::string bytes = HexToBytes(a);
    BytesNot(bytes);
    return BytesToHex(bytes);
}

std::string HexOr(const std::string& a, const std::string& b) { return CombineHex(a, b, Or); }

void BytesAnd(std::string& a, const std::string& b) { CombineFromRight(a, b, And); }

void BytesNot(std::string& a) {
    for (char& byte : a) byte = static_cast<char>(static_cast<unsigned char>(byte) ^ 0xFFu);
}

void BytesOr(std::string& a, const std::string& b) { CombineFromRight(a, b, Or); }

}  // namespace sb
