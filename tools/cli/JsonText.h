#pragma once
#include <cstdio>
#include <string>

namespace sb::cli {

// A JSON string of a byte string: each byte stands for the code point of the
// same number (U+0000 to U+00FF), written as UTF-8, so that a reader gets the
// module's bytes back one for one.
inline std::string JsonString(const std::string& bytes) {
    std::string out = "\"";
    for (const unsigned char b : bytes) {
        switch (b) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (b < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04X", b);
                    out += escaped;
                } else if (b < 0x80) {
                    out += static_cast<char>(b);
                } else {
                    out += static_cast<char>(0xC0 | (b >> 6));
                    out += static_cast<char>(0x80 | (b & 0x3F));
                }
        }
    }
    return out + "\"";
}

}  // namespace sb::cli
