#include "ui/StatusBarText.h"

#include "ui/Latin1.h"

namespace sb::ui {

std::string OneLine(const std::string& text) {
    std::string line;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c != '\r' && c != '\n') {
            line += c;
            continue;
        }
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        line += " | ";
    }
    return line;
}

void StatusBarText::SetText(const std::string& text) {
    text_ = text;
    bar_.showMessage(Latin1(OneLine(text)));
    bar_.setToolTip(Latin1(text));
}

}  // namespace sb::ui
