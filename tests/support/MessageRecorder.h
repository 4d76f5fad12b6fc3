#pragma once
#include <deque>
#include <string>
#include <vector>

#include "ui/MessageBox.h"

namespace sb::test {

// Takes the place of the message box for its lifetime: keeps each text and
// answers from a script (OK when the script is used up).
class MessageRecorder {
public:
    MessageRecorder() {
        ui::SetMessageHandler([this](const std::string& text, ui::MessageButtons buttons) {
            texts.push_back(text);
            if (answers.empty()) return ui::MessageAnswer::Ok;
            const auto answer = answers.front();
            answers.pop_front();
            return answer;
        });
    }
    ~MessageRecorder() { ui::SetMessageHandler({}); }
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    std::vector<std::string> texts;
    std::deque<ui::MessageAnswer> answers;
};

}  // namespace sb::test
