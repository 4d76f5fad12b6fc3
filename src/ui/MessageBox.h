#pragma once
#include <functional>
#include <string>

// Every message box of the screens goes through ShowMessage: a QMessageBox
// with the application's title and OK, or OK and Cancel. Tests install a
// handler that records the texts and answers as scripted.
namespace sb::ui {

enum class MessageButtons { Ok, OkCancel };
enum class MessageAnswer { Ok, Cancel };

// text is Latin-1, one character a byte, lines separated by CR LF.
MessageAnswer ShowMessage(const std::string& text, MessageButtons buttons = MessageButtons::Ok);

using MessageHandler = std::function<MessageAnswer(const std::string& text, MessageButtons buttons)>;
// An empty handler brings the real message box back.
void SetMessageHandler(MessageHandler handler);

}  // namespace sb::ui
