#include "stationscreen/frmStation.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMenu>
#include <QScrollArea>
#include <QVBoxLayout>
#include <chrono>
#include <iostream>

#include "ProgramVersion.h"
#include "link/SystemInventory.h"
#include "production/FirmwareFile.h"
#include "production/JobCommand.h"
#include "production/ProductionLog.h"
#include "production/Recipe.h"
#include "production/RecipeFirmware.h"
#include "production/Station.h"
#include "production/StationStopping.h"
#include "production/Summary.h"
#include "stationscreen/ChildPump.h"
#include "ui/Guarded.h"
#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/Named.h"

namespace sb::ui {
namespace {

constexpr int kTileColumns = 3;

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Paths are the file system's bytes (UTF-8 here), not texts of the module.
std::string PathOf(const QString& text) { return QFile::encodeName(text).toStdString(); }
QString PathText(const std::string& path) { return QFile::decodeName(QByteArray::fromStdString(path)); }

std::string CliBesideThisProgram() { return PathOf(QCoreApplication::applicationDirPath()) + "/servicebay-cli"; }

// Why the children cannot run; empty when they can.
std::string CliMissing(const std::string& cli) {
    if (QFileInfo(PathText(cli)).isExecutable()) return {};
    return "servicebay-cli is missing beside this program (" + cli + "); the station cannot start without it.";
}

bool IsRecipe(const std::string& path) { return path.ends_with(".sbrecipe"); }

// Every reason to refuse the recipe, one a line.
std::string ProblemsOf(const RecipeCheck& check) {
    std::string text;
    for (const RecipeProblem& problem : check.Problems) text += (text.empty() ? "" : "\r\n") + problem.Message;
    return text;
}

// "boot, identity, download, ...": what each module goes through.
std::string StepsOf(const Recipe& recipe) {
    std::string steps;
    for (const RecipeStep step : RecipeSteps(recipe)) steps += (steps.empty() ? "" : ", ") + std::string(StepName(step));
    return steps;
}

// The last line of the summary: "2 of 3 modules programmed; failed: ...".
std::string SummaryLine(const ProductionLine& line) {
    std::string table = Summarize(line.Records()).Table();
    table.pop_back();
    return table.substr(table.rfind('\n') + 1);
}

}  // namespace

struct frmStation::Run {
    std::optional<Recipe> recipe;
    std::unique_ptr<FirmwareFile> firmware;
    std::unique_ptr<ProductionLog> log;
    std::unique_ptr<PortInventory> inventory = MakePortInventory();
    std::unique_ptr<Station> station;
    std::unique_ptr<StationStopping> stopping;
    std::unique_ptr<ChildPump> pump;
    StationTiles tiles;
    bool ended = false;
};

frmStation::frmStation(QWidget* parent, std::string cli)
    : QWidget(parent, Qt::Window), cli_(cli.empty() ? CliBesideThisProgram() : std::move(cli)) {
    setObjectName(QStringLiteral("frmStation"));
    setWindowTitle(QStringLiteral("Production station"));
    BuildControls();
    watcher_ = new DeviceWatcher(this);
    connect(watcher_, &DeviceWatcher::portsChanged, this, Guarded([this] {
                if (!Running()) return;
                run_->station->Refresh();
                AfterEvent();
            }));
    firmwareCheck_.setInterval(std::chrono::milliseconds(kStationFirmwareCheckEvery));
    connect(&firmwareCheck_, &QTimer::timeout, this, Guarded([this] {
                if (!Running()) return;
                run_->station->CheckFirmware();
                AfterEvent();
            }));
    connect(cmdStart, &QPushButton::clicked, this, Guarded([this] { cmdStart_Click(); }));
    connect(cmdStop, &QPushButton::clicked, this, Guarded([this] { cmdStop_Click(); }));
    connect(cmdRecipe, &QPushButton::clicked, this, Guarded([this] {
                const QString file = QFileDialog::getOpenFileName(
                    this, QStringLiteral("Recipe"), txtRecipe->text(),
                    QStringLiteral("Recipes (*.sbrecipe);;Firmware (*.cod);;All files (*)"));
                if (!file.isEmpty()) txtRecipe->setText(file);
            }));
    connect(cmdLog, &QPushButton::clicked, this, Guarded([this] {
                const QString file = QFileDialog::getSaveFileName(
                    this, QStringLiteral("Log file"), txtLog->text(), QStringLiteral("Logs (*.log);;All files (*)"),
                    nullptr, QFileDialog::DontConfirmOverwrite);
                if (!file.isEmpty()) txtLog->setText(file);
            }));
    const std::string missing = CliMissing(cli_);
    Note(missing.empty() ? "Choose the recipe and press Start." : missing);
}

// The program ends: the modules in progress are stopped, as by a second
// Stop, and their ends logged before it goes.
frmStation::~frmStation() {
    if (!Running()) return;
    try {
        run_->station->Abort();
        while (run_->station->Line().Running() > 0) run_->station->Line().Children().Wait(-1);
    } catch (const std::exception&) {
        // What is still running is killed with the line.
    }
}

bool frmStation::Running() const { return run_ && !run_->ended; }

QLabel* frmStation::CountLabel(QGridLayout* grid, int column, const char* name, const QString& caption,
                               ModuleStage stage) {
    auto* title = new QLabel(caption, this);
    auto* count = Named(new QLabel(QStringLiteral("0"), this), name);
    QFont big = font();
    big.setPointSizeF(big.pointSizeF() * 2.6);
    big.setBold(true);
    count->setFont(big);
    QPalette palette = count->palette();
    palette.setColor(QPalette::WindowText, StageColour(stage));
    count->setPalette(palette);
    grid->addWidget(title, 0, column);
    grid->addWidget(count, 1, column);
    return count;
}

void frmStation::BuildControls() {
    QFont base = font();
    base.setPointSize(16);
    setFont(base);

    txtRecipe = Named(new QLineEdit(this), "txtRecipe");
    cmdRecipe = Named(new QPushButton(QStringLiteral("Choose..."), this), "cmdRecipe");
    txtLog = Named(new QLineEdit(this), "txtLog");
    cmdLog = Named(new QPushButton(QStringLiteral("Choose..."), this), "cmdLog");
    chkProduction = Named(new QCheckBox(QStringLiteral("Production record"), this), "chkProduction");
    chkRunAfter = Named(new QCheckBox(QStringLiteral("Start each module after programming"), this), "chkRunAfter");
    lblRecipe = Named(new QLabel(this), "lblRecipe");
    lblFirmware = Named(new QLabel(this), "lblFirmware");
    lblFirmware->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblLogFile = Named(new QLabel(this), "lblLogFile");
    auto* setup = new QGridLayout;
    setup->addWidget(new QLabel(QStringLiteral("Recipe"), this), 0, 0);
    setup->addWidget(txtRecipe, 0, 1);
    setup->addWidget(cmdRecipe, 0, 2);
    setup->addWidget(new QLabel(QStringLiteral("Log file"), this), 1, 0);
    setup->addWidget(txtLog, 1, 1);
    setup->addWidget(cmdLog, 1, 2);
    auto* flags = new QHBoxLayout;
    flags->addWidget(chkProduction);
    flags->addWidget(chkRunAfter);
    flags->addStretch();
    setup->addLayout(flags, 2, 1);
    setup->addWidget(lblRecipe, 3, 0, 1, 3);
    setup->addWidget(lblFirmware, 4, 0, 1, 3);
    setup->addWidget(lblLogFile, 5, 0, 1, 3);

    auto* counts = new QGridLayout;
    lblProgrammed = CountLabel(counts, 0, "lblProgrammed", QStringLiteral("Programmed"), ModuleStage::Programmed);
    lblFailed = CountLabel(counts, 1, "lblFailed", QStringLiteral("Failed"), ModuleStage::Failed);
    lblInProgress = CountLabel(counts, 2, "lblInProgress", QStringLiteral("In progress"), ModuleStage::InProgress);
    lblWaiting = CountLabel(counts, 3, "lblWaiting", QStringLiteral("Waiting"), ModuleStage::Waiting);

    lblNote = Named(new QLabel(this), "lblNote");
    lblNote->setWordWrap(true);
    QFont noteFont = font();
    noteFont.setPointSizeF(noteFont.pointSizeF() * 1.3);
    lblNote->setFont(noteFont);

    auto* tileArea = new QScrollArea(this);
    tileArea->setWidgetResizable(true);
    auto* tileHolder = new QWidget(tileArea);
    tileGrid_ = new QGridLayout(tileHolder);
    tileGrid_->setAlignment(Qt::AlignTop);
    for (int column = 0; column < kTileColumns; ++column) tileGrid_->setColumnStretch(column, 1);
    tileArea->setWidget(tileHolder);

    cmdStart = Named(new QPushButton(QStringLiteral("Start"), this), "cmdStart");
    cmdStop = Named(new QPushButton(QStringLiteral("Stop"), this), "cmdStop");
    cmdStop->setEnabled(false);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {cmdStart, cmdStop}) {
        button->setMinimumSize(200, 64);
        button->setFont(noteFont);
        buttons->addWidget(button);
    }
    buttons->addStretch();

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(setup);
    layout->addLayout(counts);
    layout->addWidget(lblNote);
    layout->addWidget(tileArea, 1);
    layout->addLayout(buttons);
    resize(1200, 800);
}

void frmStation::cmdStart_Click() {
    if (Running()) return;
    const std::string missing = CliMissing(cli_);
    if (!missing.empty()) {
        ShowMessage(missing);
        return;
    }
    Start();
}

// The firmware and the log before any module is touched: a run whose log
// cannot be opened is refused, as on the command line.
void frmStation::Start() {
    auto run = std::make_unique<Run>();
    const std::string chosen = PathOf(txtRecipe->text().trimmed());
    const std::string log = PathOf(txtLog->text().trimmed());
    if (IsRecipe(chosen)) {
        RecipeCheck check = CheckRecipe(chosen);
        if (!check.Ok()) {
            ShowMessage(ProblemsOf(check));
            return;
        }
        run->recipe = std::move(check.Recipe);
        chkProduction->setChecked(run->recipe->ProductionRecord);
        chkRunAfter->setChecked(run->recipe->RunAfter);
    }
    try {
        run->firmware = std::make_unique<FirmwareFile>(run->recipe ? run->recipe->Firmware.File : chosen);
        if (run->recipe)
            if (const std::string differs = RecipeFirmwareDiffers(*run->recipe, *run->firmware); !differs.empty())
                throw FirmwareError(differs);
        if (!log.empty()) run->log = std::make_unique<ProductionLog>(log);
    } catch (const std::runtime_error& refused) {
        ShowMessage(refused.what());
        return;
    }
    LineSettings line;
    line.Firmware = run->firmware.get();
    line.Log = run->log.get();
    line.Run = NewRunIdentity("", std::string("servicebay ") + kProgramVersion);
    line.Recipe = run->recipe ? &*run->recipe : nullptr;
    const JobProgram program{cli_, chkProduction->isChecked(), chkRunAfter->isChecked(),
                             run->recipe ? run->recipe->Path : std::string()};
    line.Command = [program, firmware = run->firmware.get()](const ModuleJob& job) {
        return JobCommand(program, *firmware, job);
    };
    Run* r = run.get();
    StationSettings settings{std::move(line), 0, [r] { return ListModules(*r->inventory); },
                             [this](const std::string& text) { Note(text); }};
    // A line the log did not take is not lost: it goes to standard error as it is.
    LineHooks hooks{[r](const ModuleJob& job, int attempt) { r->tiles.Started(job, attempt, Now()); },
                    [r](const ModuleJob& job, const XmodemProgress& p) { r->tiles.Progress(job, p, Now()); },
                    [r](const ModuleJob& job, const ModuleRecord* record, bool ok) { r->tiles.Ended(job, record, ok); },
                    [](const std::string& unlogged) { std::cerr << unlogged << std::flush; },
                    [r](const ModuleJob& job, RecipeStep step) { r->tiles.Begun(job, StepName(step)); }};
    run->station = std::make_unique<Station>(std::move(settings), std::move(hooks));
    run->stopping = std::make_unique<StationStopping>("Stop", [this](const std::string& text) { Note(text); });
    run->pump = std::make_unique<ChildPump>(run->station->Line().Children());
    connect(run->pump.get(), &ChildPump::served, this, Guarded([this] { AfterEvent(); }));

    for (ModuleTileView* tile : tiles) delete tile;
    tiles.clear();
    run_ = std::move(run);
    lblRecipe->setText(run_->recipe ? QStringLiteral("Recipe %1   %2")
                                          .arg(PathText(run_->recipe->Path), Latin1(StepsOf(*run_->recipe)))
                                    : QStringLiteral("No recipe: the firmware file alone"));
    lblFirmware->setText(QStringLiteral("Firmware %1   SHA-256 %2")
                             .arg(PathText(run_->firmware->Name()), Latin1(run_->firmware->Sha256())));
    lblLogFile->setText(log.empty() ? QStringLiteral("No log file") : QStringLiteral("Log ") + PathText(log));
    for (QWidget* input : std::initializer_list<QWidget*>{txtRecipe, cmdRecipe, txtLog, cmdLog, chkProduction,
                                                          chkRunAfter, cmdStart})
        input->setEnabled(false);
    cmdStop->setEnabled(true);
    Note("Waiting for modules.");
    firmwareCheck_.start();
    run_->station->Refresh();
    AfterEvent();
}

// The first press lets the modules in progress end, the second stops them.
void frmStation::cmdStop_Click() {
    if (!Running()) return;
    run_->stopping->Take(*run_->station, 1);
    if (run_->stopping->Begun()) cmdStop->setText(QStringLiteral("Stop now"));
    AfterEvent();
}

// Behind every event of a run: the log's state, the children's descriptors,
// the screen, and the end.
void frmStation::AfterEvent() {
    if (!Running()) return;
    run_->stopping->Take(*run_->station, 0);
    run_->pump->Follow();
    ShowRun();
    if (run_->station->Finished()) Finish();
}

void frmStation::ShowRun() {
    const std::vector<BookEntry> entries = run_->station->Book().Entries();
    run_->tiles.Follow(entries);
    const StationCounts counts = CountsOf(entries);
    lblProgrammed->setNum(counts.Programmed);
    lblFailed->setNum(counts.Failed);
    lblInProgress->setNum(counts.InProgress);
    lblWaiting->setNum(counts.Waiting);
    for (const ModuleTile& tile : run_->tiles.Tiles()) {
        const size_t index = static_cast<size_t>(tile.Module) - 1;
        if (index >= tiles.size()) {
            tiles.push_back(Named(new ModuleTileView(tileGrid_->parentWidget()), "tile"));
            tileGrid_->addWidget(tiles.back(), static_cast<int>(index) / kTileColumns,
                                 static_cast<int>(index) % kTileColumns);
        }
        tiles[index]->Show(tile);
    }
}

void frmStation::Finish() {
    run_->ended = true;
    firmwareCheck_.stop();
    const Station& station = *run_->station;
    std::string end = "The station has stopped: " + SummaryLine(run_->station->Line()) + ".";
    if (station.Refusal()) end = *station.Refusal() + " " + end;
    if (run_->station->Line().LogFailure()) end = "The log cannot be written: " + *run_->station->Line().LogFailure() + ". " + end;
    Note(end);
    for (QWidget* input : std::initializer_list<QWidget*>{txtRecipe, cmdRecipe, txtLog, cmdLog, chkProduction,
                                                          chkRunAfter, cmdStart})
        input->setEnabled(true);
    cmdStop->setText(QStringLiteral("Stop"));
    cmdStop->setEnabled(false);
}

void frmStation::Note(const std::string& text) { lblNote->setText(Latin1(text)); }

void AddStationMenu(QMenu& tools, QWidget& window) {
    QAction* open = Named(tools.addAction(QStringLiteral("Production station\u2026")), "mnuStation");
    QObject::connect(open, &QAction::triggered, &window, Guarded([&window] {
                         auto* station = window.findChild<frmStation*>(QStringLiteral("frmStation"));
                         if (!station) station = new frmStation(&window);
                         station->show();
                         station->raise();
                         station->activateWindow();
                     }));
}

}  // namespace sb::ui
