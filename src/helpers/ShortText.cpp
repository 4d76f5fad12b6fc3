#include "helpers/ShortText.h"

namespace sb {

std::string ShortText(std::string_view text, size_t limit) {
    if (text.size() <= limit) return std::string(text);
    size_t cut = limit;
    // 10xxxxxx continues a UTF-8 character, which the cut leaves whole; a
    // text of other bytes is cut at most three bytes short.
    for (int back = 0; back < 3 && cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80; ++back) --cut;
    return std::string(text.substr(0, cut)) + "... (" + std::to_string(text.size()) + " bytes)";
}

}  // namespace sb
