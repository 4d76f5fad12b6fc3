#pragma once
#include <QStatusBar>
#include <string>

#include "link/StatusText.h"

namespace sb::ui {

// A screen's status bar as the status text of its exchanges, one character a
// byte (Latin-1). The text is kept as it was set, line breaks included, and
// read back so; the bar has one line and draws each line break (CR LF, CR or
// LF) as " | ", so that a second line stays in view, and the whole text
// stands in the bar's tool tip.
//
// The text stays until the next one: a tip that the window shows in the bar
// as a temporary message (a menu's, when it opens) gives way to it at once.
class StatusBarText final : public StatusText {
public:
    explicit StatusBarText(QStatusBar& bar);
    ~StatusBarText() override;
    StatusBarText(const StatusBarText&) = delete;
    StatusBarText& operator=(const StatusBarText&) = delete;

    std::string Text() const override { return text_; }
    void SetText(const std::string& text) override;

private:
    QStatusBar& bar_;
    std::string text_;
    QString shown_;
    QMetaObject::Connection keep_;
};

// The text as the bar draws it.
std::string OneLine(const std::string& text);

}  // namespace sb::ui
