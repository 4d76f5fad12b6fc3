#pragma once
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "link/DeviceWatcher.h"
#include "stationscreen/ModuleTileView.h"
#include "stationscreen/StationTiles.h"

// "Production station": the station of the command line in a window for the
// line's display. It runs the same core (Station, its book and its line of
// child programs, the stopping), follows the plugging through the device
// events, and shows one tile per module and the counts in large letters.
// The children are servicebay-cli, found beside this program.
namespace sb::ui {

class frmStation final : public QWidget {
    Q_OBJECT
public:
    // cli: the servicebay-cli the children run; empty for the one beside this program.
    explicit frmStation(QWidget* parent = nullptr, std::string cli = {});
    ~frmStation() override;

    bool Running() const;

    QLineEdit* txtRecipe;
    QPushButton* cmdRecipe;
    QLineEdit* txtLog;
    QPushButton* cmdLog;
    QCheckBox* chkProduction;
    QCheckBox* chkRunAfter;
    QLabel* lblRecipe;    // its path and the steps of each module
    QLabel* lblFirmware;  // its SHA-256
    QLabel* lblLogFile;
    QLabel* lblProgrammed;
    QLabel* lblFailed;
    QLabel* lblInProgress;
    QLabel* lblWaiting;
    QLabel* lblNote;
    QPushButton* cmdStart;
    QPushButton* cmdStop;
    std::vector<ModuleTileView*> tiles;

    void cmdStart_Click();
    void cmdStop_Click();

private:
    struct Run;
    void BuildControls();
    QLabel* CountLabel(QGridLayout* grid, int column, const char* name, const QString& caption, ModuleStage stage);
    void Start();
    void AfterEvent();
    void ShowRun();
    void Finish();
    void Note(const std::string& text);

    std::string cli_;
    std::unique_ptr<Run> run_;
    DeviceWatcher* watcher_;
    QTimer firmwareCheck_;
    QGridLayout* tileGrid_;
};

}  // namespace sb::ui

namespace sb::ui {

// Tools -> "Production station...": the window's one station, made at its first use.
void AddStationMenu(QMenu& tools, QWidget& window);

}  // namespace sb::ui
