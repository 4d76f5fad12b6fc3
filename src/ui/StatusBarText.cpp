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

StatusBarText::StatusBarText(QStatusBar& bar) : bar_(bar) {
    keep_ = QObject::connect(&bar_, &QStatusBar::messageChanged, &bar_, [this](const QString& message) {
        if (message != shown_) bar_.showMessage(shown_);
    });
}

StatusBarText::~StatusBarText() { QObject::disconnect(keep_); }

void StatusBarText::SetText(const std::string& text) {
    text_ = text;
    shown_ = Latin1(OneLine(text));
    bar_.showMessage(shown_);
    bar_.setToolTip(Latin1(text));
}

}  // namespace sb::ui
