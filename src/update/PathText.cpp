#include "update/PathText.h"

namespace sb::ui {
namespace {

constexpr char16_t kEscapeBase = 0xDC00;

// The length of the well-formed UTF-8 sequence at bytes[at] and its code
// point; 0 when none starts there.
int Sequence(const std::string& bytes, size_t at, char32_t& code) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    int length = 0;
    char32_t lowest = 0;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2, code = lead & 0x1F, lowest = 0x80;
    else if (lead >= 0xE0 && lead <= 0xEF)
        length = 3, code = lead & 0x0F, lowest = 0x800;
    else if (lead >= 0xF0 && lead <= 0xF4)
        length = 4, code = lead & 0x07, lowest = 0x10000;
    else
        return 0;
    if (at + static_cast<size_t>(length) > bytes.size()) return 0;
    for (int i = 1; i < length; ++i) {
        const unsigned char next = byte(at + static_cast<size_t>(i));
        if ((next & 0xC0) != 0x80) return 0;
        code = (code << 6) | (next & 0x3F);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < lowest || code > 0x10FFFF || surrogate ? 0 : length;
}

void AppendUtf8(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace

QString PathText(const std::string& path) {
    QString text;
    for (size_t at = 0; at < path.size();) {
        char32_t code = 0;
        const int length = Sequence(path, at, code);
        if (length == 0) {
            text += QChar(static_cast<char16_t>(kEscapeBase + static_cast<unsigned char>(path[at])));
            ++at;
            continue;
        }
        text += QString::fromUcs4(&code, 1);
        at += static_cast<size_t>(length);
    }
    return text;
}

std::string PathOf(const QString& text) {
    std::string path;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (QChar::isHighSurrogate(unit) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode())) {
            AppendUtf8(path, QChar::surrogateToUcs4(unit, text[i + 1].unicode()));
            ++i;
        } else if (unit >= kEscapeBase + 0x80 && unit <= kEscapeBase + 0xFF) {
            path += static_cast<char>(unit - kEscapeBase);
        } else {
            AppendUtf8(path, unit);
        }
    }
    return path;
}

}  // namespace sb::ui
