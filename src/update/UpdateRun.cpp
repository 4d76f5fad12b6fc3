#include "update/UpdateRun.h"

#include <sys/stat.h>

#include <filesystem>

#include "helpers/BinaryFile.h"
#include "helpers/Waiting.h"
#include "link/CommandSet.h"
#include "link/PortLists.h"
#include "link/SkipOnPortError.h"
#include "helpers/QuietStep.h"
#include "update/SignText.h"

namespace sb {
namespace {

std::string Report(const std::string& headline, const std::string& report, const std::string& tail) {
    return headline + "\r\nReport:" + report + "\r\n" + tail;
}

std::string Programmed(int32_t result) { return SignText(result) + " bytes programmed"; }

// Closes the port and enables the start control also when a hook throws.
class RunEnd {
public:
    explicit RunEnd(std::function<void()> end) : end_(std::move(end)) {}
    ~RunEnd() { end_(); }
    RunEnd(const RunEnd&) = delete;
    RunEnd& operator=(const RunEnd&) = delete;

private:
    std::function<void()> end_;
};

}  // namespace

bool IsNormalFile(const std::string& path) {
    struct stat status {};
    if (path.empty() || ::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    // On this platform a hidden file is one whose name begins with a dot.
    return std::filesystem::path(path).filename().string().front() != '.';
}

UpdateRun::UpdateRun(SerialPort& comPort, StatusText& status, UpdateHooks hooks)
    : port_(comPort), status_(status), hooks_(std::move(hooks)) {}

UpdateOutcome UpdateRun::Run(bool production, const std::string& iniPath) {
    outcome_ = UpdateOutcome{};
    hooks_.EnableStart(false);
    {
        const RunEnd end([this] {
            ClosePort();
            hooks_.EnableStart(true);
        });
        outcome_.End = Steps(production, iniPath);
    }
    file_.clear();
    return outcome_;
}

UpdateEnd UpdateRun::Steps(bool production, const std::string& iniPath) {
    if (!IsNormalFile(hooks_.FileName())) {
        Say(kUpdateNoFile);
        return UpdateEnd::NoFile;
    }
    status_.SetText(kScanning);
    // A selection that fails is no selection.
    std::string selPort;
    QuietStep([&] { selPort = hooks_.ChoosePort(); });
    if (!NamesPort(selPort)) {
        Say(kUpdateNoBootDevice);
        return UpdateEnd::NoPort;
    }
    Open([&] { OpenPort(port_, selPort, kSettings300); });
    WaitMs(kAfterOpeningMs);

    for (;;) {
        // A retry comes back here, with the port open unless it had failed.
        if (!port_.PortOpen()) {
            Open([this] { port_.SetPortOpen(true); });
            WaitMs(kAfterOpeningMs);
        }
        Skip([this] { port_.Output(std::string(cmd::BOOT)); });
        WaitMs(kAfterBootMs);
        // Read anew for each try.
        outcome_.FileSize = ReadBinaryFile(hooks_.FileName(), file_);
        if (outcome_.FileSize == 0) {
            Say(kUpdateReadError);
            return UpdateEnd::FileUnreadable;
        }
        Try();
        if (outcome_.Result > 0) break;
        if (!OfferRetry()) {
            ClosePort();
            return UpdateEnd::Abandoned;
        }
    }
    Finish(production, iniPath);
    return UpdateEnd::Programmed;
}

void UpdateRun::Open(const std::function<void()>& opening) {
    outcome_.OpenFailure = SkipOnPortError(opening);
    if (outcome_.OpenFailure && !outcome_.PortFailure) outcome_.PortFailure = outcome_.OpenFailure;
}

// The transfer and the report behind it. A failing transfer leaves the
// result of the try before.
void UpdateRun::Try() {
    ++outcome_.Tries;
    Skip([this] { XmodemInit(port_, status_, hooks_.Progress); });
    Skip([this] { outcome_.Result = XmodemTransmit(file_, outcome_.FileSize); });
    WaitMs(kBeforeReportMs);
    Skip([this] { outcome_.Report = port_.Input(); });
}

bool UpdateRun::OfferRetry() {
    status_.SetText(kUpdateNotDownloaded);
    const std::string question = Report("Download was completed with Errors", outcome_.Report, "Retry ?");
    return hooks_.ShowMessage(question, ui::MessageButtons::OkCancel) == ui::MessageAnswer::Ok;
}

void UpdateRun::Finish(bool production, const std::string& iniPath) {
    status_.SetText(std::string(kUpdateCompleted) + "\r\n" + Programmed(outcome_.Result));
    Say(Report(kUpdateCompleted, outcome_.Report, Programmed(outcome_.Result)));
    Skip([this] { port_.Input(); });
    if (production) outcome_.Record = WriteProductionRecord(port_, status_, iniPath);
    ClosePort();
}

void UpdateRun::ClosePort() {
    if (port_.PortOpen()) Skip([this] { port_.SetPortOpen(false); });
}

void UpdateRun::Say(const std::string& text) { hooks_.ShowMessage(text, ui::MessageButtons::Ok); }

template <class Step>
void UpdateRun::Skip(Step&& step) {
    auto failure = SkipOnPortError(std::forward<Step>(step));
    if (failure && !outcome_.PortFailure) outcome_.PortFailure = std::move(failure);
}

}  // namespace sb
