#pragma once
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QWidget>

#include "update/Xmodem.h"

namespace sb::ui {

// Beside the status text of the update screen: a bar with the share of the
// file that the module has acknowledged, and the bytes, the rate and the
// time left, so that a technician sees that the download moves. Each
// transfer (each try) starts it anew.
class TransferMeter final : public QWidget {
    Q_OBJECT
public:
    explicit TransferMeter(QWidget* parent = nullptr);

    // Empty, before a run.
    void Clear();
    // A hook of the transfer: at the start of its blocks and at each
    // acknowledged block.
    void Show(const XmodemProgress& progress);

    QProgressBar* prgTransfer;
    QLabel* lblTransferPace;

private:
    QElapsedTimer sinceStart_;
    QElapsedTimer sinceText_;
};

}  // namespace sb::ui
