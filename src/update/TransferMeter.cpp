#include "update/TransferMeter.h"

#include <QHBoxLayout>

#include "ui/Latin1.h"
#include "ui/Named.h"
#include "update/TransferPace.h"

namespace sb::ui {
namespace {

// The text beside the bar changes at most so often; the bar itself at each
// step of a percent.
constexpr qint64 kTextEveryMs = 250;
constexpr int kPercent = 100;

std::string PaceLine(const XmodemProgress& progress, const TransferPace& pace) {
    std::string line = std::to_string(progress.Bytes) + " of " + std::to_string(progress.Total) + " bytes";
    if (pace.BytesPerSecond > 0) line += "   " + RateText(pace.BytesPerSecond);
    if (pace.SecondsLeft >= 0 && progress.Bytes < progress.Total) line += "   " + TimeLeftText(pace.SecondsLeft);
    return line;
}

}  // namespace

TransferMeter::TransferMeter(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("TransferMeter"));
    prgTransfer = Named(new QProgressBar(this), "prgTransfer");
    prgTransfer->setRange(0, kPercent);
    prgTransfer->setMinimumWidth(160);
    lblTransferPace = Named(new QLabel(this), "lblTransferPace");
    lblTransferPace->setMinimumWidth(lblTransferPace->fontMetrics().horizontalAdvance(
        QStringLiteral("4194304 of 4194304 bytes   999.9 kB/s   99:59 left")));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(prgTransfer);
    row->addWidget(lblTransferPace, 1);
    Clear();
}

void TransferMeter::Clear() {
    prgTransfer->setValue(0);
    lblTransferPace->clear();
}

void TransferMeter::Show(const XmodemProgress& progress) {
    if (progress.Blocks == 0) {
        sinceStart_.start();
        sinceText_.invalidate();
    }
    const TransferPace pace = PaceOf(progress, static_cast<double>(sinceStart_.elapsed()) / 1000);
    prgTransfer->setValue(static_cast<int>(pace.Share * kPercent));
    const bool last = progress.Bytes >= progress.Total;
    if (!last && sinceText_.isValid() && sinceText_.elapsed() < kTextEveryMs) return;
    lblTransferPace->setText(Latin1(PaceLine(progress, pace)));
    sinceText_.start();
}

}  // namespace sb::ui
