#pragma once
#include <string>
#include <vector>

#include "ui/MessageBox.h"

namespace sb::test {

// Takes the place of the message box for its lifetime: keeps each text and
// answers OK.
class MessageRecorder {
public:
    MessageRecorder() {
        ui::SetMessageHandler([this](const std::string& text, ui::MessageButtons) {
            texts.push_back(text);
            return ui::MessageAnswer::Ok;
        });
    }
    ~MessageRecorder() { ui::SetMessageHandler({}); }
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    std::vector<std::string> texts;
};

}  // namespace sb::test
