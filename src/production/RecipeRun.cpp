#include "production/RecipeRun.h"

#include "configfiles/WriteChecks.h"
#include "helpers/Sha256.h"
#include "helpers/ShortText.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"
#include "helpers/WholeFile.h"
#include "link/CommandSet.h"
#include "link/ModeSwitch.h"
#include "link/ReadModule.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"

namespace sb {
namespace {

// Behind the opening, before the first command, as for a read.
constexpr double kSettleMs = 500;
constexpr int64_t kLongestFirmware = (int64_t{1} << 31) - 1;

struct StepFailed {
    std::string why;
};

// Read apart from the update run's own reading, so that a module holds
// one copy of the firmware while it is sent.
std::string FileSha256(const std::string& path) {
    std::string bytes;
    if (ReadWholeFile(path, bytes, kLongestFirmware) != WholeFileRead::Complete)
        throw StepFailed{path + " cannot be read"};
    return Sha256Hex(bytes);
}

std::string Quoted(const std::string& answer) { return "\"" + ShortText(answer) + "\""; }

}  // namespace

RecipeRun::RecipeRun(SerialPort& port, StatusText& status, const Recipe& recipe, UpdateHooks hooks,
                     std::function<void(RecipeStep)> entered)
    : port_(port), status_(status), recipe_(recipe), hooks_(std::move(hooks)), entered_(std::move(entered)) {}

RecipeOutcome RecipeRun::Run(const std::string& portName, const std::string& firmwarePath,
                             const std::string& iniPath) {
    portName_ = portName;
    outcome_ = {};
    try {
        Identity();
        Download(firmwarePath);
        if (recipe_.Config) {
            Configure();
            Verify();
        }
        if (recipe_.ProductionRecord) Record(iniPath);
        if (recipe_.RunAfter) StartFirmware();
    } catch (const StepFailed& failure) {
        outcome_.Failed = step_;
        outcome_.Detail = failure.why;
    } catch (const PortError& failure) {
        outcome_.Failed = step_;
        outcome_.Detail = std::string("the port failed: ") + failure.what() +
                          (failure.reason.empty() ? "" : " (" + failure.reason + ")");
    } catch (const std::exception& failure) {
        // A module's answer this program could not take (a catalog of
        // numbers beyond its range) fails the module, not the program.
        outcome_.Failed = step_;
        outcome_.Detail = failure.what();
    }
    if (port_.PortOpen()) SkipOnPortError([this] { port_.SetPortOpen(false); });
    return outcome_;
}

void RecipeRun::Enter(RecipeStep step) {
    step_ = step;
    if (entered_) entered_(step);
}

void RecipeRun::Open() {
    if (port_.PortOpen()) return;
    OpenPort(port_, portName_, kSettings300);
    WaitMs(kSettleMs);
}

std::string RecipeRun::Ask(std::string_view command) {
    return TrimBlanks(TerminalExecute(std::string(command), port_, status_));
}

void RecipeRun::Identity() {
    Enter(RecipeStep::Identity);
    Open();
    const std::string sn = Ask(cmd::GETSN);
    if (sn.empty() || sn == kNoAnswer || sn == cmd::AnswerError)
        throw StepFailed{"the module answered " + Quoted(sn) + " to GETSN"};
    outcome_.SN = sn;
    outcome_.PName = Ask(cmd::GETNAME);
    if (recipe_.ExpectedPName && *outcome_.PName != *recipe_.ExpectedPName)
        throw StepFailed{"the module's PName is " + Quoted(*outcome_.PName) + ", the recipe's " +
                         Quoted(*recipe_.ExpectedPName)};
    port_.SetPortOpen(false);
}

// One try: the production line tries a failed download again, as an
// attempt of its own. Nothing is sent unless the bytes are the recipe's.
void RecipeRun::Download(const std::string& firmwarePath) {
    Enter(RecipeStep::Download);
    if (const std::string sha256 = FileSha256(firmwarePath); sha256 != recipe_.Firmware.Sha256)
        throw StepFailed{"the firmware's " + OtherSha256(sha256, recipe_.Firmware.Sha256)};
    UpdateHooks hooks = hooks_;
    hooks.FileName = [firmwarePath] { return firmwarePath; };
    hooks.ChoosePort = [this] { return portName_; };
    hooks.EnableStart = [](bool) {};
    hooks.ShowMessage = [this](const std::string& text, ui::MessageButtons buttons) {
        if (hooks_.ShowMessage) hooks_.ShowMessage(text, ui::MessageButtons::Ok);
        return buttons == ui::MessageButtons::OkCancel ? ui::MessageAnswer::Cancel : ui::MessageAnswer::Ok;
    };
    outcome_.Update = UpdateRun(port_, status_, hooks).Run(false, "");
    if (outcome_.Update->End != UpdateEnd::Programmed) throw StepFailed{};
    Open();
    SameModule(RecipeStep::Download, Ask(cmd::GETSN));
}

void RecipeRun::Configure() {
    Enter(RecipeStep::Configure);
    Open();
    std::string reason;
    catalog_ = ReadModuleCatalog(port_, status_, reason);
    if (!catalog_)
        throw StepFailed{"the module serves no catalog this program takes" + (reason.empty() ? "" : ": " + reason)};
    const LoadedConfig& config = *recipe_.Config;
    if (const FitCheck fit = CheckFit(*catalog_, config.Device.CfgImage); fit.Verdict != Fit::Fits)
        throw StepFailed{fit.Message};
    const std::string answer = Ask(std::string(cmd::SETAPPCFG) + config.Document.Image);
    if (answer != cmd::AnswerOK) throw StepFailed{"the module answered " + Quoted(answer) + " to SETAPPCFG"};
    SameModule(RecipeStep::Configure, Ask(cmd::GETSN));
}

void RecipeRun::Verify() {
    Enter(RecipeStep::Verify);
    const VerifyResult verified = VerifyWrite(*catalog_, recipe_.Config->Device.CfgImage, Ask(cmd::GETAPPCFG));
    if (!verified.Holds) throw StepFailed{VerifyMessage(verified)};
    SameModule(RecipeStep::Verify, Ask(cmd::GETSN));
}

void RecipeRun::Record(const std::string& iniPath) {
    Enter(RecipeStep::Record);
    Open();
    const ProductionRecord& record = *(outcome_.Record = WriteProductionRecord(port_, status_, iniPath));
    if (record.End != RecordEnd::Written)
        throw StepFailed{std::string("no production record: ") + RecordEndText(record.End)};
    SameModule(RecipeStep::Record, record.SN);
}

void RecipeRun::StartFirmware() {
    Enter(RecipeStep::Run);
    Open();
    SameModule(RecipeStep::Run, Ask(cmd::GETSN));
    port_.SetPortOpen(false);
    if (const auto failure = SwitchToRunning(port_, portName_, status_, [](const std::string&) {}))
        throw *failure;
}

void RecipeRun::SameModule(RecipeStep step, const std::string& sn) {
    if (sn != *outcome_.SN)
        throw StepFailed{"GETSN answered " + Quoted(sn) + " at the " + StepName(step) + " step, but " +
                         Quoted(*outcome_.SN) + " at the identity step"};
}

}  // namespace sb
