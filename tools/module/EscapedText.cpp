#include "EscapedText.h"

#include <stdexcept>

#include "helpers/NumberScan.h"

namespace sb::module {
namespace {

char HexByte(const std::string& text, size_t at) {
    const int high = at < text.size() ? HexDigitValue(text[at]) : -1;
    const int low = at + 1 < text.size() ? HexDigitValue(text[at + 1]) : -1;
    if (high < 0 || low < 0) throw std::invalid_argument("\\x needs two hex digits in \"" + text + "\"");
    return static_cast<char>(high * 16 + low);
}

}  // namespace

std::string UnescapeText(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        if (++i == text.size()) throw std::invalid_argument("a lone backslash ends \"" + text + "\"");
        switch (text[i]) {
            case 'r':
                bytes += '\r';
                break;
            case 'n':
                bytes += '\n';
                break;
            case 't':
                bytes += '\t';
                break;
            case '\\':
                bytes += '\\';
                break;
            case '"':
                bytes += '"';
                break;
            case 'x':
                bytes += HexByte(text, i + 1);
                i += 2;
                break;
            default:
                throw std::invalid_argument(std::string("unknown escape \\") + text[i] + " in \"" + text + "\"");
        }
    }
    return bytes;
}

}  // namespace sb::module
