#pragma once
#include <QStatusBar>

#include "link/StatusText.h"

namespace sb::ui {

// A screen's status bar as the status text of its exchanges; one character a
// byte (Latin-1).
class StatusBarText final : public StatusText {
public:
    explicit StatusBarText(QStatusBar& bar) : bar_(bar) {}
    std::string Text() const override;
    void SetText(const std::string& text) override;

private:
    QStatusBar& bar_;
};

}  // namespace sb::ui
