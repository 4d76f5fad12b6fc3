#pragma once
#include <QFrame>
#include <QLabel>
#include <QProgressBar>

#include "stationscreen/StationTiles.h"

// One module on the station's screen, to be read from a few metres away: its
// port and USB serial, its SN, the step in large letters, the transfer's bar
// and rate, and the result in the colour of its stage.
namespace sb::ui {

class ModuleTileView final : public QFrame {
    Q_OBJECT
public:
    explicit ModuleTileView(QWidget* parent = nullptr);
    void Show(const ModuleTile& tile);

    QLabel* lblWhere;  // port and USB serial
    QLabel* lblSN;
    QLabel* lblStep;
    QProgressBar* barTransfer;
    QLabel* lblRate;
    QLabel* lblDetail;
};

// The colour of a stage, as the tiles and the counts show it.
QColor StageColour(ModuleStage stage);

}  // namespace sb::ui
