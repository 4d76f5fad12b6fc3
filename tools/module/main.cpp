#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <deque>
#include <iostream>

#include "EscapedText.h"
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
    "re-enumerates.\n\n"
    "The profile (KEY = VALUE lines, see data/SampleModule.profile) gives the answers\n"
    "and the catalog. Texts given to the options below may hold \\r, \\n, \\t, \\\\ and \\xHH.";

constexpr const char* kFooter =
    "Exit status: 0 after SIGTERM, SIGINT or SIGHUP, or when the device vanished by\n"
    "--vanish-after-commands or --vanish-after-blocks; 1 for a bad option or profile;\n"
    "2 when the pseudo-terminal, the registry or the link cannot be made.\n"
    "At the end the registry entry and the link are removed, and the state file says\n"
    "Mode=stopped or Mode=vanished.";

// A text option whose escapes are read after the parse.
struct EscapedOption {
    std::string raw;
    std::string* target;
};

void AddModuleOptions(CLI::App& app, ModuleSettings& s, std::string& profilePath, std::string& xmodem,
                      std::string& firmwareOut) {
    app.add_option("--profile", profilePath, "Profile file; without one the module has an identity but no catalog")
        ->check(CLI::ExistingFile);
    app.add_flag("--boot", s.startInBoot, "Start in the boot loader instead of the running firmware");
    app.add_option("--name", s.entryName, "Name of the registry entry (default module-<process id>)");
    app.add_option("--link", s.linkPath, "Keep a symbolic link here to the current device");
    app.add_option("--state-file", s.statePath,
                   "Keep a file of KEY=VALUE lines here: Mode (running, boot, switching, stopped, vanished),\n"
                   "Device, ProcessId, AppConfig, Transfer (none or the last transfer's outcome),\n"
                   "FirmwareSize and FirmwareBlocks of the last image received");
    app.add_option("--firmware-out", firmwareOut, "Write each firmware image received here (overrides FirmwareOut)");
    app.add_option("--xmodem", xmodem, "crc or checksum: what the boot loader asks for (overrides Xmodem)")
        ->check(CLI::IsMember({"crc", "checksum"}));
    app.add_option("--reenumerate-ms", s.reenumerateMs, "How long the module is away when it changes its mode")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--quiet", s.quiet, "No messages on standard error");
}

void AddFaultOptions(CLI::App& app, sb::module::ModuleFaults& f, std::deque<EscapedOption>& texts) {
    const std::string group = "Faults of the boot loader";
    auto text = [&](const std::string& name, std::string& target, const std::string& help) {
        texts.push_back({"", &target});
        app.add_option(name, texts.back().raw, help)->group(group);
    };
    app.add_flag("--silent", f.silent, "No echo and no answer to any command")->group(group);
    app.add_option("--echo-pieces", f.framing.echoPieces, "Send the echo in N pieces, --piece-gap apart")->group(group);
    app.add_option("--echo-delay", f.framing.echoDelayMs, "Wait MS before the echo")->group(group);
    app.add_option("--answer-delay", f.framing.answerDelayMs, "Wait MS between the echo and the answer")->group(group);
    app.add_option("--answer-pieces", f.framing.answerPieces,
                   "Send what follows the echo (LF, answer, prompt) in N pieces, the first --piece-gap\n"
                   "behind the echo")
        ->group(group);
    app.add_option("--piece-gap", f.framing.pieceGapMs, "MS between two pieces")->capture_default_str()->group(group);
    text("--noise", f.framing.noise, "Send TEXT in front of the echo");
    app.add_flag("--no-lf", f.framing.noLineFeed, "No LF behind the echo's CR")->group(group);
    text("--after-prompt", f.framing.afterPrompt, "Send TEXT behind the prompt");
    app.add_flag("--lowercase-ok", f.answers.lowerCaseOk, "Answer \"ok\" to SETAPPCFG")->group(group);
    app.add_flag("--error-all", f.answers.errorAll, "Answer \"Error!\" to every command")->group(group);
    app.add_option("--error-on", f.answers.errorOn, "Answer \"Error!\" to COMMAND (repeatable), e.g. GETSN")
        ->group(group);
    app.add_flag("--wrong-uid", f.answers.wrongUid, "GETUID gives a UID that CLROTP refuses")->group(group);
    app.add_option("--uid-length", f.answers.uidLength, "GETUID gives N characters (cut, or filled with 0)")
        ->group(group);
    app.add_flag("--catalog-broken", f.answers.catalogBroken, "GETINFOFILE gives the first half of the catalog")
        ->group(group);
    app.add_flag("--catalog-missing", f.answers.catalogMissing, "Answer \"Error!\" to GETINFOFILE")->group(group);
    app.add_option("--config-length", f.answers.configLength,
                   "GETAPPCFG gives N bytes (cut, or filled with zero bytes)")
        ->group(group);
    app.add_option("--vanish-after-commands", f.vanishAfterCommands,
                   "Answer N commands, then vanish when the next one comes")
        ->group(group);
    app.add_option("--vanish-after-blocks", f.xmodem.vanishAfterBlocks,
                   "Take N blocks of a transfer, then vanish when the next one comes")
        ->group(group);
    app.add_option("--xmodem-cancel-after", f.xmodem.cancelAfterBlocks,
                   "Take N blocks, then answer the next one with CAN CAN")
        ->group(group);
    app.add_flag("--xmodem-refuse", f.xmodem.refuseBlocks, "Answer every block with NAK")->group(group);
    app.add_flag("--xmodem-no-eot-ack", f.xmodem.ignoreEot, "Never acknowledge the EOT")->group(group);
}

}  // namespace

int main(int argc, char** argv) {
    ModuleSettings settings;
    std::string profilePath, xmodem, firmwareOut;
    std::deque<EscapedOption> texts;

    CLI::App app{kDescription, "servicebay-module"};
    app.footer(kFooter);
    AddModuleOptions(app, settings, profilePath, xmodem, firmwareOut);
    AddFaultOptions(app, settings.faults, texts);
    try {
        app.parse(argc, argv);
        for (const EscapedOption& text : texts) *text.target = sb::module::UnescapeText(text.raw);
        settings.profile = profilePath.empty() ? sb::module::BuiltInProfile() : sb::module::LoadProfile(profilePath);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
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
