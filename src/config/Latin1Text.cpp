#include "config/Latin1Text.h"

namespace sb {
namespace {

// The length of the sequence that the lead byte opens; 0 for a byte that
// opens none.
int SequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if ((lead & 0xE0) == 0xC0) return 2;
    if ((lead & 0xF0) == 0xE0) return 3;
    if ((lead & 0xF8) == 0xF0) return 4;
    return 0;
}

// Decodes the sequence at text[at]; false when it is broken. length
// receives the bytes to step over either way.
bool Decode(std::string_view text, size_t at, unsigned& codePoint, size_t& length) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const int wanted = SequenceLength(lead);
    if (wanted == 0) {
        length = 1;
        return false;
    }
    codePoint = wanted == 1 ? lead : lead & (0x7F >> wanted);
    length = 1;
    while (length < static_cast<size_t>(wanted) && at + length < text.size() &&
           (static_cast<unsigned char>(text[at + length]) & 0xC0) == 0x80)
        codePoint = (codePoint << 6) | (static_cast<unsigned char>(text[at + length++]) & 0x3F);
    return length == static_cast<size_t>(wanted);
}

bool IsAscii(std::string_view text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    return true;
}

}  // namespace

std::string Latin1ToUtf8(std::string_view bytes) {
    size_t high = 0;
    for (const unsigned char b : bytes) high += b >> 7;
    if (high == 0) return std::string(bytes);
    std::string text(bytes.size() + high, '\0');
    size_t at = 0;
    for (const unsigned char b : bytes) {
        if (b < 0x80) {
            text[at++] = static_cast<char>(b);
        } else {
            text[at++] = static_cast<char>(0xC0 | (b >> 6));
            text[at++] = static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    return text;
}

std::string Latin1ToTerminal(std::string_view bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string safe;
    for (const unsigned char c : bytes) {
        if (c == '\\') {
            safe += "\\\\";
        } else if (c < 0x20 || (c >= 0x7F && c < 0xA0)) {
            safe += "\\x";
            safe += digits[c >> 4];
            safe += digits[c & 0x0F];
        } else {
            safe += static_cast<char>(c);
        }
    }
    return Latin1ToUtf8(safe);
}

std::string Utf8ToLatin1(std::string_view text) {
    if (IsAscii(text)) return std::string(text);
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t at = 0, length = 0; at < text.size(); at += length) {
        unsigned codePoint = 0;
        const bool whole = Decode(text, at, codePoint, length);
        bytes += whole && codePoint <= 0xFF ? static_cast<char>(codePoint) : '?';
    }
    return bytes;
}

bool IsUtf8(std::string_view text) {
    for (size_t at = 0, length = 0; at < text.size(); at += length) {
        unsigned codePoint = 0;
        if (!Decode(text, at, codePoint, length)) return false;
    }
    return true;
}

char Latin1Lower(char c) {
    const auto byte = static_cast<unsigned char>(c);
    const bool capital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
    return capital ? static_cast<char>(byte + 0x20) : c;
}

}  // namespace sb
