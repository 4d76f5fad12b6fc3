#include "VirtualModule.h"

#include <chrono>
#include <cstdio>
#include <iostream>
#include <optional>

#include "ReplyFraming.h"
#include "XmodemReceiver.h"
#include "helpers/WholeFile.h"
#include "link/ModuleRegistry.h"

namespace sb::module {
namespace {

using Clock = std::chrono::steady_clock;

// An opener that holds the running module at 300 baud for this long and then
// closes it asks for the boot loader.
constexpr auto kBootHold = std::chrono::milliseconds(300);
// How often the speed of an opening of the running module is looked at.
constexpr int kSpeedSampleMs = 20;
// The boot loader answers RUN and starts the firmware when the opener
// closes the device, or after this long.
constexpr auto kRunGrace = std::chrono::milliseconds(1000);
// The report follows the end of a transfer once the line has been quiet for
// this long: behind the sender's last look at the line, and behind the last
// bytes a giving-up sender sends (its third CAN), which are dropped.
constexpr int kReportDelayMs = 200;
constexpr size_t kLongestLine = 1024 * 1024;

constexpr const char* kRunningVendorProduct = "VID_C252&PID_";
constexpr const char* kBootVendorProduct = "VID_0483&PID_5740";

int MsUntil(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

// A terminal that ends its lines in CR LF leaves an LF in front of the next one.
std::string WithoutLeadingLineFeeds(const std::string& line) {
    const size_t start = line.find_first_not_of('\n');
    return start == std::string::npos ? std::string() : line.substr(start);
}

}  // namespace

VirtualModule::VirtualModule(ModuleSettings settings, int stopFd)
    : settings_(std::move(settings)),
      stopFd_(stopFd),
      commands_(settings_.profile, settings_.faults.answers),
      link_(settings_.linkPath),
      mode_(settings_.startInBoot ? Mode::Boot : Mode::Running) {
    state_.appConfig = commands_.ImageHex();
}

VirtualModule::~VirtualModule() { Disappear(); }

void VirtualModule::Run() {
    pty_ = std::make_unique<PseudoTerminal>();
    Appear();
    try {
        for (;;) {
            Wire wire(*pty_, stopFd_, settings_.delivery);
            wire.WaitForOpening();
            if (mode_ == Mode::Running ? ServeRunning(wire) : ServeBoot(wire))
                Reenumerate(mode_ == Mode::Running ? Mode::Boot : Mode::Running);
        }
    } catch (const StopRequested&) {
        Disappear();
        SaveState("stopped", "");
    } catch (const DeviceVanished&) {
        Disappear();
        pty_.reset();
        SaveState("vanished", "");
        Log("the device vanished");
    }
}

void VirtualModule::Appear() {
    const bool boot = mode_ == Mode::Boot;
    const ModuleProfile& profile = settings_.profile;
    RegisteredModule entry;
    entry.DevicePath = pty_->SlavePath();
    entry.PNPDeviceID = std::string("USB\\") + (boot ? kBootVendorProduct : kRunningVendorProduct + profile.ProductId) +
                        "\\" + profile.UsbSerial;
    entry.Description = profile.Description + (boot ? ", boot loader" : "");
    PublishModule(settings_.entryName, entry);
    published_ = true;
    link_.PointTo(entry.DevicePath);
    SaveState(boot ? "boot" : "running", entry.DevicePath);
    // One line a device: tests and scripts read it to know the module is ready.
    std::printf("%s\n", entry.DevicePath.c_str());
    std::fflush(stdout);
    Log(std::string(boot ? "boot loader" : "running firmware") + " on " + entry.DevicePath);
}

void VirtualModule::Disappear() noexcept {
    try {
        if (published_) WithdrawModule(settings_.entryName);
        published_ = false;
        link_.Remove();
    } catch (const std::exception& e) {
        Log(e.what());
    }
}

void VirtualModule::Reenumerate(Mode to) {
    Disappear();
    SaveState("switching", "");
    // The new device is made before the old one closes, so that it gets
    // another number: a program must never find the module under the name it
    // had before the switch.
    auto next = std::make_unique<PseudoTerminal>();
    pty_ = std::move(next);
    Wire(*pty_, stopFd_).Pause(settings_.reenumerateMs);
    mode_ = to;
    Appear();
}

// The firmware takes no commands: what comes in is dropped. Only the speed of
// the opening and how long it is held count.
bool VirtualModule::ServeRunning(Wire& wire) {
    std::optional<Clock::time_point> slowSince;
    try {
        for (;;) {
            // Sampled while the device is open: at the closing the opener puts
            // the old settings back.
            if (!slowSince && pty_->SlaveSpeed() == B300) slowSince = Clock::now();
            wire.Receive(kSpeedSampleMs);
        }
    } catch (const LineClosed&) {
        return slowSince && Clock::now() - *slowSince >= kBootHold;
    }
}

// Lines end in CR. Answers true when RUN has started the firmware.
bool VirtualModule::ServeBoot(Wire& wire) {
    std::string line;
    std::optional<Clock::time_point> runAt;
    try {
        for (;;) {
            const std::string bytes = wire.Receive(runAt ? MsUntil(*runAt) : -1);
            if (runAt && Clock::now() >= *runAt) return true;
            if (runAt) continue;  // the boot loader is leaving: nothing more is taken
            for (size_t i = 0; i < bytes.size(); ++i) {
                if (bytes[i] != '\r') {
                    if (line.size() < kLongestLine) line += bytes[i];
                    continue;
                }
                const std::string command = WithoutLeadingLineFeeds(line);
                line.clear();
                if (command == "BOOT") {
                    // What came behind the boot command belongs to the transfer.
                    wire.PutBack(bytes.substr(i + 1));
                    ReceiveFirmware(wire);
                    break;
                }
                if (TakeLine(wire, command)) {
                    runAt = Clock::now() + kRunGrace;
                    break;
                }
            }
        }
    } catch (const LineClosed&) {
        return runAt.has_value();
    }
}

// Answers true for RUN.
bool VirtualModule::TakeLine(Wire& wire, const std::string& line) {
    if (line.empty()) return false;
    if (line == "RUN") {
        wire.Send(settings_.profile.RunAnswer);
        return true;
    }
    if (settings_.faults.vanishAfterCommands == commandsAnswered_) throw DeviceVanished{};
    if (!settings_.faults.silent) Reply(wire, line);
    return false;
}

void VirtualModule::Reply(Wire& wire, const std::string& line) {
    const std::string answer = commands_.Answer(line);
    for (const Piece& piece : FrameReply(line + "\r", answer, settings_.faults.framing)) {
        wire.Pause(piece.delayMs);
        wire.Send(piece.bytes);
    }
    ++commandsAnswered_;
    if (commands_.ImageHex() != state_.appConfig) {
        state_.appConfig = commands_.ImageHex();
        SaveState(state_.mode, state_.device);
    }
}

void VirtualModule::ReceiveFirmware(Wire& wire) {
    const ModuleProfile& profile = settings_.profile;
    Log(std::string("receiving firmware, ") + (profile.Xmodem == XmodemCheck::Crc ? "CRC" : "checksum") + " mode");
    TransferResult result;
    try {
        result = ReceiveXmodem(wire, profile.Xmodem, settings_.faults.xmodem);
    } catch (const LineClosed&) {
        state_.transfer = "interrupted";
        SaveState(state_.mode, state_.device);
        throw;
    }
    bool ok = result.outcome == TransferOutcome::Complete;
    state_.transfer = OutcomeText(result.outcome);
    if (ok) {
        ok = StoreFirmware(result.image);
        if (!ok) state_.transfer = "not-stored";
        state_.firmwareSize = static_cast<long>(result.image.size());
        state_.firmwareBlocks = result.blocks;
    }
    SaveState(state_.mode, state_.device);
    Log("transfer " + state_.transfer + ": " + std::to_string(result.blocks) + " blocks, " +
        std::to_string(result.image.size()) + " bytes");
    wire.Purge(kReportDelayMs);
    wire.Send(ok ? profile.ReportOk : profile.ReportFailed);
}

bool VirtualModule::StoreFirmware(const std::string& image) {
    const std::string& path = settings_.profile.FirmwareOut;
    if (path.empty() || ReplaceFileAtomically(path, image)) return true;
    Log("cannot write the firmware to " + path);
    return false;
}

void VirtualModule::SaveState(const std::string& mode, const std::string& device) {
    state_.mode = mode;
    state_.device = device;
    if (!WriteStateFile(settings_.statePath, state_)) Log("cannot write the state file " + settings_.statePath);
}

void VirtualModule::Log(const std::string& text) const {
    if (!settings_.quiet) std::cerr << "servicebay-module: " << text << std::endl;
}

}  // namespace sb::module
