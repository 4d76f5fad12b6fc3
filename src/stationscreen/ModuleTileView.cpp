#include "stationscreen/ModuleTileView.h"

#include <QVBoxLayout>

#include "ui/Latin1.h"
#include "ui/Named.h"

namespace sb::ui {
namespace {

QFont Sized(QFont font, double scale, bool bold = false) {
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(bold);
    return font;
}

// A module's own texts: "-" where it has none.
QString OrDash(const std::string& text) { return text.empty() ? QStringLiteral("-") : Latin1(text); }

}  // namespace

QColor StageColour(ModuleStage stage) {
    switch (stage) {
        case ModuleStage::Waiting: return QColor(0x5f, 0x63, 0x68);
        case ModuleStage::InProgress: return QColor(0x0b, 0x57, 0xd0);
        case ModuleStage::Programmed: return QColor(0x13, 0x73, 0x33);
        case ModuleStage::Failed: return QColor(0xb3, 0x26, 0x1e);
    }
    return Qt::black;
}

ModuleTileView::ModuleTileView(QWidget* parent) : QFrame(parent) {
    setAutoFillBackground(true);
    setFrameShape(QFrame::Box);
    setLineWidth(2);
    lblWhere = Named(new QLabel(this), "lblWhere");
    lblWhere->setFont(Sized(font(), 1.3, true));
    lblSN = Named(new QLabel(this), "lblSN");
    lblStep = Named(new QLabel(this), "lblStep");
    lblStep->setFont(Sized(font(), 2.0, true));
    barTransfer = Named(new QProgressBar(this), "barTransfer");
    barTransfer->setRange(0, 1000);
    barTransfer->setTextVisible(false);
    barTransfer->setMinimumHeight(28);
    // White on the tile's colour, whatever the colour.
    barTransfer->setStyleSheet(QStringLiteral("QProgressBar { border: 2px solid white; background: transparent; }"
                                              "QProgressBar::chunk { background: white; }"));
    lblRate = Named(new QLabel(this), "lblRate");
    lblDetail = Named(new QLabel(this), "lblDetail");
    lblDetail->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    for (QWidget* widget : std::initializer_list<QWidget*>{lblWhere, lblSN, lblStep, barTransfer, lblRate, lblDetail})
        layout->addWidget(widget);
    setMinimumWidth(340);
    // Every tile of a row as high as the others, with or without a transfer.
    QSizePolicy keep = barTransfer->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    barTransfer->setSizePolicy(keep);
}

void ModuleTileView::Show(const ModuleTile& tile) {
    lblWhere->setText(OrDash(tile.Port) + QStringLiteral("   ") + OrDash(tile.UsbSerial));
    lblSN->setText(QStringLiteral("SN ") + (tile.SN ? OrDash(*tile.SN) : QStringLiteral("-")) +
                   (tile.Attempt > 1 ? QStringLiteral("   try %1").arg(tile.Attempt) : QString()));
    lblStep->setText(Latin1(tile.Step));
    const TransferPace pace = PaceOf(tile);
    barTransfer->setVisible(tile.Progress.has_value());
    barTransfer->setValue(static_cast<int>(pace.Share * 1000));
    QString rate;
    if (tile.Progress) rate = QStringLiteral("%1%").arg(static_cast<int>(pace.Share * 100));
    if (pace.BytesPerSecond > 0) rate += QStringLiteral("   ") + Latin1(RateText(pace.BytesPerSecond));
    lblRate->setText(rate);
    lblDetail->setText(Latin1(tile.Detail));

    // A module that was taken away keeps its colour, faded.
    QColor colour = StageColour(tile.Stage);
    if (!tile.Present) colour = colour.lighter(150);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, colour);
    palette.setColor(QPalette::WindowText, Qt::white);
    setPalette(palette);
}

}  // namespace sb::ui
