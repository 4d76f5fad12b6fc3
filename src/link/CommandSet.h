#pragma once
#include <string_view>

// The words of the wire, in one place. Framed commands go through
// TerminalExecute without their line end; a command with an argument carries
// its one blank ("SETAPPCFG " and the hex text). The raw commands are written
// to the port as they stand.
namespace sb::cmd {

inline constexpr std::string_view GETSN = "GETSN";
inline constexpr std::string_view GETVER = "GETVER";
inline constexpr std::string_view GETNAME = "GETNAME";
inline constexpr std::string_view GETPDATE = "GETPDATE";
inline constexpr std::string_view GETVIN = "GETVIN";
inline constexpr std::string_view GETAPPNAME = "GETAPPNAME";
inline constexpr std::string_view GETAPPVER = "GETAPPVER";
inline constexpr std::string_view GETHWVER = "GETHWVER";
inline constexpr std::string_view GETAPPCFG = "GETAPPCFG";
inline constexpr std::string_view GETINFOFILE = "GETINFOFILE";
inline constexpr std::string_view GETAPPINFO = "GETAPPINFO";
inline constexpr std::string_view GETUID = "GETUID";
inline constexpr std::string_view SETAPPCFG = "SETAPPCFG ";
inline constexpr std::string_view CLROTP = "CLROTP ";

// Raw: framed by a CR on both sides, and the run command with CR LF.
inline constexpr std::string_view BOOT = "\rBOOT\r";
inline constexpr std::string_view RUN = "RUN\r\n";

// The module's answers that the system tests for.
inline constexpr std::string_view AnswerOK = "OK";
inline constexpr std::string_view AnswerError = "Error!";

}  // namespace sb::cmd
