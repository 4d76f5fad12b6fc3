#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <deque>
#include <iostream>

#include "EscapedText.h"
#include "ProgramVersion.h"
#include "VirtualModule.h"

// servicebay-module: a virtual module on a pseudo-terminal, for tests,
// demonstrations and training.
namespace {

using sb::module::ModuleSettings;

int stopPipe[2] = {-1, -1};

void RequestStop(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t ignored = ::write(stopPipe[1], &byte, 1);
}

void InstallSignals() {
    if (::pipe2(stopPipe, O_CLOEXEC | O_NONBLOCK) != 0) throw std::runtime_error("cannot make a pipe");
    struct sigaction action {};
    action.sa_handler = RequestStop;
    ::sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaction(signal, &action, nullptr);
    // A reader of the device lines that has gone must not end the module.
    ::signal(SIGPIPE, SIG_IGN);
}

constexpr const char* kDescription =
    "servicebay-module: a virtual module on a pseudo-terminal.\n\n"
    "It publishes its device in the module registry ($SERVICEBAY_REGISTRY, else\n"
    "$XDG_RUNTIME_DIR/servicebay, else /tmp/servicebay-<uid>), where servicebay and\n"
    "servicebay-cli find it, and prints the device's path on standard output, one\n"
    "line for each device it appears as.\n\n"
    "Running its firmware (USB identity VID_C252&PID_17xx) it answers nothing. An\n"
    "opening at 300 baud, held for 300 ms or more and closed, sends it to its boot\n"
    "loader (VID_0483&PID_5740). The boot loader answers each command line that ends\n"
    "in CR with the echo of the line, LF, the answer and the prompt CR LF \"> \"; it\n"
    "receives firmware by XMODEM behind CR \"BOOT\" CR and answers \"RUN\" CR LF by\n"
    "starting the firmware. Each change of mode makes a new device, as a module on USB\n"
    "re-enumerates. What it sends reaches the line as from a module on USB full speed:\n"
    "in packets of at most 64 bytes, 16 a millisecond (--whole-writes: all at once).\n\n"
    "The profile (KEY = VALUE lines, see data/SampleModule.profile) gives the answers\n"
    "and the catalog. Texts given to the options below may hold \\r, \\n, \\t, \\\\ and \\xHH.\n";

constexpr const char* kFooter =
    "Exit status: 0 after SIGTERM, SIGINT or SIGHUP, or when the device vanished by\n"
    "--vanish-after-commands or --vanish-after-blocks; 1 for a bad option or profile;\n"
    "2 when the pseudo-terminal, the registry or the link cannot be made.\n"
    "At the end the registry entry and the link are removed, and the state file says\n"
    "Mode=stopped or Mode=vanished.";

// Counts and times: whole numbers from 0 on.
const CLI::Validator kNotNegative(
    [](std::string& text) {
        const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
        return digits ? std::string() : "\"" + text + "\" is no whole number of 0 or more";
    },
    "");

// A text option whose escapes are read after the parse.
struct EscapedOption {
    std::string raw;
    std::string* target;
};

void AddModuleOptions(CLI::App& app, ModuleSettings& s, std::string& profilePath, std::string& xmodem,
                      std::string& firmwareOut) {
    app.add_option("--profile", profilePath, "Profile file; without one the module has an identity but no catalog")
        ->type_name("PATH")
        ->check(CLI::ExistingFile);
    app.add_flag("--boot", s.startInBoot, "Start in the boot loader instead of the running firmware");
    app.add_option("--name", s.entryName, "Name of the registry entry (default module-<process id>)")
        ->type_name("NAME");
    app.add_option("--link", s.linkPath, "Keep a symbolic link here to the current device")->type_name("PATH");
    app.add_option("--state-file", s.statePath,
                   "Keep a file of KEY=VALUE lines here: Mode (running, boot, switching, stopped,\n"
                   "vanished), Device, ProcessId, AppConfig, Transfer (none, or the outcome of the\n"
                   "last transfer: complete, interrupted, ...), FirmwareSize and FirmwareBlocks of\n"
                   "the last image received whole")
        ->type_name("PATH");
    app.add_option("--firmware-out", firmwareOut, "Write each firmware image received here (overrides FirmwareOut)")
        ->type_name("PATH");
    app.add_option("--xmodem", xmodem, "What the boot loader asks for at the handshake (overrides Xmodem)")
        ->type_name("crc|checksum")
        ->check(CLI::IsMember({"crc", "checksum"}));
    app.add_option("--reenumerate-ms", s.reenumerateMs, "How long the module is away when it changes its mode")
        ->type_name("MS")
        ->capture_default_str()
        ->check(kNotNegative);
    app.add_flag_function(
        "--whole-writes", [&s](std::int64_t) { s.delivery = sb::module::Delivery::WholeWrites; },
        "Hand each reply to the line at once, in one piece, instead of in packets of at most\n"
        "64 bytes paced as on USB full speed (16 a millisecond)");
    app.add_flag("--quiet", s.quiet, "No messages on standard error");
}

void AddFaultOptions(CLI::App& app, sb::module::ModuleFaults& f, std::deque<EscapedOption>& texts) {
    const std::string group = "Faults of the boot loader";
    auto number = [&](const std::string& name, int& target, const char* unit, const std::string& help) {
        return app.add_option(name, target, help)->type_name(unit)->check(kNotNegative)->group(group);
    };
    auto text = [&](const std::string& name, std::string& target, const std::string& help) {
        texts.push_back({"", &target});
        app.add_option(name, texts.back().raw, help)->type_name("TEXT")->group(group);
    };
    auto flag = [&](const std::string& name, bool& target, const std::string& help) {
        app.add_flag(name, target, help)->group(group);
    };
    flag("--silent", f.silent, "No echo and no answer to any command");
    number("--echo-pieces", f.framing.echoPieces, "N", "Send the echo in N pieces, --piece-gap apart");
    number("--echo-delay", f.framing.echoDelayMs, "MS", "Wait before the echo");
    number("--answer-delay", f.framing.answerDelayMs, "MS", "Wait between the echo and the rest");
    number("--answer-pieces", f.framing.answerPieces, "N",
           "Send what follows the echo (LF, answer, prompt) in N pieces,\nthe first --piece-gap behind the echo");
    number("--piece-gap", f.framing.pieceGapMs, "MS", "Between two pieces")->capture_default_str();
    text("--noise", f.framing.noise, "Send TEXT in front of the echo");
    flag("--no-lf", f.framing.noLineFeed, "No LF behind the echo's CR");
    text("--after-prompt", f.framing.afterPrompt, "Send TEXT behind the prompt");
    flag("--lowercase-ok", f.answers.lowerCaseOk, "Answer \"ok\" to SETAPPCFG");
    flag("--ignore-config-writes", f.answers.ignoreConfigWrites,
         "Answer SETAPPCFG as usual but keep the configuration it had");
    flag("--error-all", f.answers.errorAll, "Answer \"Error!\" to every command");
    app.add_option("--error-on", f.answers.errorOn, "Answer \"Error!\" to COMMAND, e.g. GETSN; may be repeated")
        ->type_name("COMMAND")
        ->allow_extra_args(false)
        ->group(group);
    flag("--wrong-uid", f.answers.wrongUid, "GETUID gives a UID that CLROTP refuses");
    number("--uid-length", f.answers.uidLength, "N", "GETUID gives N characters (cut, or filled with 0)");
    flag("--catalog-broken", f.answers.catalogBroken, "GETINFOFILE gives the first half of the catalog");
    flag("--catalog-missing", f.answers.catalogMissing, "Answer \"Error!\" to GETINFOFILE");
    number("--config-length", f.answers.configLength, "N", "GETAPPCFG gives N bytes (cut, or filled with zero bytes)");
    number("--vanish-after-commands", f.vanishAfterCommands, "N",
           "Answer N commands, then vanish when the next one comes");
    number("--vanish-after-blocks", f.xmodem.vanishAfterBlocks, "N",
           "Take N blocks of a transfer, then vanish when the next one comes");
    number("--xmodem-cancel-after", f.xmodem.cancelAfterBlocks, "N",
           "Take N blocks, then answer the next one with CAN CAN");
    flag("--xmodem-refuse", f.xmodem.refuseBlocks, "Answer every block with NAK");
    flag("--xmodem-no-eot-ack", f.xmodem.ignoreEot, "Never acknowledge the EOT");
}

}  // namespace

int main(int argc, char** argv) {
    ModuleSettings settings;
    std::string profilePath, xmodem, firmwareOut;
    std::deque<EscapedOption> texts;

    CLI::App app{kDescription, "servicebay-module"};
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("servicebay-module ") + sb::kProgramVersion);
    AddModuleOptions(app, settings, profilePath, xmodem, firmwareOut);
    AddFaultOptions(app, settings.faults, texts);
    try {
        app.parse(argc, argv);
        for (const EscapedOption& text : texts) *text.target = sb::module::UnescapeText(text.raw);
        settings.profile = profilePath.empty() ? sb::module::BuiltInProfile() : sb::module::LoadProfile(profilePath);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << "servicebay-module: " << e.what() << "\n";
        return 1;
    }
    if (!firmwareOut.empty()) settings.profile.FirmwareOut = firmwareOut;
    if (!xmodem.empty())
        settings.profile.Xmodem = xmodem == "crc" ? sb::module::XmodemCheck::Crc : sb::module::XmodemCheck::Checksum;
    if (settings.entryName.empty()) settings.entryName = "module-" + std::to_string(::getpid());

    try {
        InstallSignals();
        sb::module::VirtualModule module(std::move(settings), stopPipe[0]);
        module.Run();
    } catch (const std::exception& e) {
        std::cerr << "servicebay-module: " << e.what() << "\n";
        return 2;
    }
    return 0;
}
