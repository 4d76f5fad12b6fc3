#pragma once
#include <string>

namespace sb {

// The one text of a screen's status bar, read and written.
class StatusText {
public:
    virtual ~StatusText() = default;
    virtual std::string Text() const = 0;
    virtual void SetText(const std::string& text) = 0;
};

// A status text without a screen: the command-line tool and the tests.
class PlainStatusText : public StatusText {
public:
    std::string Text() const override { return text_; }
    void SetText(const std::string& text) override { text_ = text; }

private:
    std::string text_;
};

}  // namespace sb
