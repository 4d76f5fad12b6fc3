#pragma once
#include <string>

#include "link/SerialPort.h"
#include "link/StatusText.h"

// One command exchange with the module: empty the input, send the command
// line, wait for its echo, wait for the answer up to the prompt.
//
// The terminal keeps its state between calls: the bound port, the bound
// status text and the receive buffer. Each exchange rebinds both and clears
// the buffer first, so nothing of one exchange survives into the next. The
// port must be open; the terminal neither opens nor closes it, and a failing
// port operation ends the exchange with the PortError.
namespace sb {

inline constexpr char kCommandEnd = '\r';
inline constexpr const char* kPrompt = "\r\n> ";
inline constexpr const char* kNoAnswer = "No answer";

// The answer between the line break behind the echo and the prompt, or
// "No answer". The command comes without its line end.
std::string TerminalExecute(const std::string& command, SerialPort& port, StatusText& status);

// The steps of an exchange, on the bound port and status.
void TerminalSend(const std::string& text);
// What came in, as soon as a poll has taken anything: a poll that takes
// nothing waits 10 ms, so the next takes all that came meanwhile. Empty after
// 100 idle polls.
std::string TerminalRead();
void TerminalFlush();

}  // namespace sb
