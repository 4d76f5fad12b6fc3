#include "CatalogGenerator.h"

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace sb::bench {
namespace {

struct Kind {
    const char* type;
    int bitLen;
};

// 22 bits an option on average: 5,000 options fill about 14 KB of an image.
constexpr Kind kKinds[] = {{"INT", 20}, {"BIN", 32}, {"STR", 32}, {"BITFIELD", 16}, {"FLOAT", 12}};
constexpr int kIdBits = 32;

std::string Hex(uint64_t value, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "%0*llX", digits, static_cast<unsigned long long>(value));
    return text;
}

// A mask of `bits` set bits as one hex number, most significant digit first.
std::string AllSet(int bits) {
    std::string mask(static_cast<size_t>((bits + 3) / 4), 'F');
    if (bits % 4 != 0) mask[0] = "137"[bits % 4 - 1];
    return mask;
}

// Every seventh option locked.
std::string Locked(int options) {
    std::string mask(static_cast<size_t>((options + 3) / 4), '0');
    for (int i = 0; i < options; i += 7) {
        const size_t digit = mask.size() - 1 - static_cast<size_t>(i / 4);
        const int value = (mask[digit] >= 'A' ? mask[digit] - 'A' + 10 : mask[digit] - '0') | (1 << (i % 4));
        mask[digit] = "0123456789ABCDEF"[value];
    }
    return mask;
}

std::string Entries(const Kind& kind, int values) {
    std::string text;
    for (int j = 0; j < values; ++j) {
        const std::string name = "Value " + std::to_string(j + 1);
        if (std::string(kind.type) == "BITFIELD") {
            const std::string bit = Hex(1u << (j % 16), 4);
            text += "<L V=\"" + bit + "\" M=\"" + bit + "\" RV=\"0000\">" + name + "</L>";
        } else {
            text += "<L V=\"" + Hex(static_cast<uint64_t>(j), 2 * ((kind.bitLen + 7) / 8)) + "\">" + name + "</L>";
        }
    }
    return text;
}

// Image bytes of one configuration: its Id, then a deterministic pattern.
std::string ImageHex(int cfgLen, uint32_t id) {
    std::string hex;
    hex.reserve(static_cast<size_t>(2 * cfgLen));
    uint32_t state = 0x12345678u + id;
    for (int i = 0; i < cfgLen; ++i) {
        uint32_t byte;
        if (i < 4) {
            byte = (id >> (8 * i)) & 0xFF;
        } else {
            state = state * 1664525u + 1013904223u;
            byte = state >> 24;
        }
        hex += Hex(byte, 2);
    }
    return hex;
}

}  // namespace

std::string GenerateCatalog(const CatalogShape& shape) {
    std::string text = "<CFG><OPTS L=\"" + Hex(static_cast<uint64_t>(shape.cfgLen), 1) + "\">\n";
    int64_t bitPos = kIdBits;
    for (int i = 0; i < shape.options; ++i) {
        const Kind& kind = kKinds[i % (sizeof kKinds / sizeof kKinds[0])];
        text += "<O N=\"Option " + std::to_string(i) + "\" S=\"" + Hex(static_cast<uint64_t>(bitPos), 1) + "\" L=\"" +
                Hex(static_cast<uint64_t>(kind.bitLen), 1) + "\" T=\"" + kind.type + "\"" +
                (std::string(kind.type) == "INT" ? " U=\" ms\"" : "") + ">" + Entries(kind, shape.valuesPerOption) +
                "</O>\n";
        bitPos += kind.bitLen;
    }
    if (bitPos > 8 * static_cast<int64_t>(shape.cfgLen)) throw std::invalid_argument("options don't fit the image");
    text += "</OPTS><PDF>\n";
    const std::string visible = AllSet(shape.options);
    const std::string locked = Locked(shape.options);
    for (int c = 0; c < shape.configurations; ++c) {
        const auto id = static_cast<uint32_t>(c + 1);
        text += "<C N=\"Configuration " + std::to_string(id) + "\" V=\"" + visible + "\" D=\"" + locked + "\">" +
                ImageHex(shape.cfgLen, id) + "</C>\n";
    }
    return text + "</PDF></CFG>\n";
}

}  // namespace sb::bench
