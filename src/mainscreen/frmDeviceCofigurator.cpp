#include "mainscreen/frmDeviceCofigurator.h"

#include <QApplication>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>
#include <QVBoxLayout>
#include <QValidator>

#include "helpers/HexText.h"
#include "helpers/QuietStep.h"
#include "link/SystemInventory.h"
#include "mainscreen/ConfigOptionsFile.h"
#include "mainscreen/HelpMenu.h"
#include "stationscreen/frmStation.h"
#include "mainscreen/UpdateScreens.h"
#include "mainscreen/WindowTrace.h"
#include "ui/Guarded.h"
#include "ui/Named.h"
#include "ui/ShowOnly.h"

namespace sb::ui {
namespace {

class TypingOnly final : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString&, int&) const override { return Intermediate; }
};

void AddRow(QGridLayout& grid, QLabel* label, QWidget* box) {
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0, Qt::AlignLeft | Qt::AlignTop);
    grid.addWidget(box, row, 1);
}

}  // namespace

frmDeviceCofigurator::frmDeviceCofigurator(std::string configOptionsPath, QWidget* parent)
    : QMainWindow(parent),
      configOptionsPath_(configOptionsPath.empty() ? DefaultConfigOptionsPath() : std::move(configOptionsPath)) {
    BuildControls();
    LayOutControls();
    ConnectEvents();
    // The load of the form: ComPort is MSComm1; the selection dialog is
    // loaded, hidden, and scans once. Nothing touches a module yet.
    portControl_ = std::make_unique<frmPortControl>(MakePortInventory(), MakeTracedPort());
}

frmDeviceCofigurator::~frmDeviceCofigurator() { Unload(); }

void frmDeviceCofigurator::BuildControls() {
    setObjectName(QStringLiteral("frmDeviceCofigurator"));
    ShowTitleFor({});

    auto* center = new QWidget(this);
    setCentralWidget(center);

    cmdRdDevInfo = Named(new QPushButton(QStringLiteral("Read info"), center), "cmdRdDevInfo");
    Command1 = Named(new QPushButton(QStringLiteral("Read info"), center), "Command1");
    Command1->setVisible(false);
    cmdFWUpdate = Named(new QPushButton(QStringLiteral("Update"), center), "cmdFWUpdate");
    cmdFWUpdate->setEnabled(false);
    cmdWriteConfig = Named(new QPushButton(QStringLiteral("Write"), center), "cmdWriteConfig");
    cmdWriteConfig->setEnabled(false);
    tvOptions = new OptionTreeView(center);
    BuildEditorPanes();
    Label3 = Named(new QLabel(QStringLiteral("Configuration Data for write"), center), "Label3");
    txtCfgEdited = ShowOnlyLines(center, "txtCfgEdited", 3);
    // The tree gets the room; a long image scrolls.
    txtCfgEdited->setMaximumHeight(txtCfgEdited->fontMetrics().lineSpacing() * 8 + 10);
    txtCfgEdited->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    Frame6 = Named(new QGroupBox(QStringLiteral("Module info"), center), "Frame6");
    Label4 = Named(new QLabel(QStringLiteral("Serial Number"), Frame6), "Label4");
    txtSN = ShowOnlyBox(Frame6, "txtSN");
    Label5 = Named(new QLabel(QStringLiteral("Product Date"), Frame6), "Label5");
    txtPDate = ShowOnlyBox(Frame6, "txtPDate");
    Label6 = Named(new QLabel(QStringLiteral("Version"), Frame6), "Label6");
    txtPVer = ShowOnlyBox(Frame6, "txtPVer");
    Label7 = Named(new QLabel(QStringLiteral("Name"), Frame6), "Label7");
    txtPName = ShowOnlyBox(Frame6, "txtPName");
    Label8 = Named(new QLabel(QStringLiteral("VIN"), Frame6), "Label8");
    txtVIN = ShowOnlyBox(Frame6, "txtVIN");

    Frame7 = Named(new QGroupBox(QStringLiteral("Firmware info"), center), "Frame7");
    Label9 = Named(new QLabel(QStringLiteral("Name"), Frame7), "Label9");
    txtFWName = ShowOnlyBox(Frame7, "txtFWName");
    Label10 = Named(new QLabel(QStringLiteral("Software Version"), Frame7), "Label10");
    txtFWVer = ShowOnlyBox(Frame7, "txtFWVer");
    Label11 = Named(new QLabel(QStringLiteral("Hardware Version"), Frame7), "Label11");
    txtHWVer = ShowOnlyBox(Frame7, "txtHWVer");
    Label12 = Named(new QLabel(QStringLiteral("Full Info"), Frame7), "Label12");
    txtAppInfo = ShowOnlyLines(Frame7, "txtAppInfo", 4);

    Frame5 = Named(new QGroupBox(QStringLiteral("Module configuration"), center), "Frame5");
    Label2 = Named(new QLabel(QStringLiteral("Predefined configurations"), Frame5), "Label2");
    cmbConfigList = Named(new QComboBox(Frame5), "cmbConfigList");
    cmbConfigList->setEditable(true);
    cmbConfigList->setInsertPolicy(QComboBox::NoInsert);
    // Typing in the edit field has no effect. The combo box would pick the
    // entry whose name stands in the field when Enter is pressed or the
    // field is left; a field that never completes and whose text is never
    // acceptable ends no edit.
    cmbConfigList->setCompleter(nullptr);
    cmbConfigList->setValidator(new TypingOnly(cmbConfigList));
    cmbConfigList->setEnabled(false);
    cmbConfigList->setMinimumContentsLength(22);
    cmdSelPredefCfg = Named(new QPushButton(QStringLiteral("Select"), Frame5), "cmdSelPredefCfg");
    cmdSelPredefCfg->setEnabled(false);
    lblShortInfoCfgName = Named(new QLabel(QStringLiteral("Short configuration info"), Frame5), "lblShortInfoCfgName");
    txtConfigInfo = ShowOnlyLines(Frame5, "txtConfigInfo", 2);
    Label1 = Named(new QLabel(QStringLiteral("Readed Configuration"), Frame5), "Label1");
    txtAppConfig = ShowOnlyLines(Frame5, "txtAppConfig", 3);
    txtAppConfig->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    mnuTools = Named(menuBar()->addMenu(QStringLiteral("Tools")), "mnuTools");
    mnuEditor = Named(mnuTools->addAction(QStringLiteral("Data Base Viewer/Editor")), "mnuEditor");
    mnuTools->addSeparator();
    mnuOfflineRead = Named(mnuTools->addAction(QStringLiteral("Read info from ConfigOptions.xml")), "mnuOfflineRead");
    mnuTools->addSeparator();
    AddStationMenu(*mnuTools, *this);
    AddConfigFileMenus();
    AddEditMenu();
    AddEditorMenus();
    AddHelpMenu(*this);

    StatusBar = Named(statusBar(), "StatusBar");
    status_ = std::make_unique<StatusBarText>(*StatusBar);

    MSComm1 = MakeTracedPort();

    tree_ = std::make_unique<QtOptionTree>(*tvOptions);
    events_ = std::make_unique<TreeEvents>(device_, *tree_, editForms_,
                                           [this] { SetCfgEdited(BytesToHex(device_.CfgImage)); },
                                           QApplication::keyboardInputInterval());
    AddEditorKeys();
}

// The file's name ahead of the caption, as desktops show a document.
void frmDeviceCofigurator::ShowTitleFor(const std::string& file) {
    const QString caption = QStringLiteral("Device Info");
    setWindowTitle(file.empty() ? caption : QFileInfo(QString::fromStdString(file)).fileName() + " - " + caption);
}

void frmDeviceCofigurator::LayOutControls() {
    auto* moduleGrid = new QGridLayout(Frame6);
    AddRow(*moduleGrid, Label4, txtSN);
    AddRow(*moduleGrid, Label5, txtPDate);
    AddRow(*moduleGrid, Label6, txtPVer);
    AddRow(*moduleGrid, Label7, txtPName);
    AddRow(*moduleGrid, Label8, txtVIN);

    auto* firmwareGrid = new QGridLayout(Frame7);
    AddRow(*firmwareGrid, Label9, txtFWName);
    AddRow(*firmwareGrid, Label10, txtFWVer);
    AddRow(*firmwareGrid, Label11, txtHWVer);
    AddRow(*firmwareGrid, Label12, txtAppInfo);

    auto* configLayout = new QVBoxLayout(Frame5);
    configLayout->addWidget(Label2);
    auto* choose = new QHBoxLayout;
    choose->addWidget(cmbConfigList, 1);
    choose->addWidget(cmdSelPredefCfg);
    configLayout->addLayout(choose);
    configLayout->addWidget(lblShortInfoCfgName);
    configLayout->addWidget(txtConfigInfo);
    configLayout->addWidget(Label1);
    configLayout->addWidget(txtAppConfig);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdRdDevInfo);
    buttons->addWidget(Command1);
    buttons->addWidget(cmdFWUpdate);
    buttons->addWidget(cmdWriteConfig);
    buttons->addStretch();

    auto* left = new QVBoxLayout;
    left->addWidget(Frame6);
    left->addWidget(Frame7);
    left->addWidget(Frame5);
    left->addStretch();
    left->addLayout(buttons);

    auto* right = new QVBoxLayout;
    auto* search = new QHBoxLayout;
    search->addWidget(txtSearch, 1);
    search->addWidget(chkOnlyChanged);
    right->addLayout(search);
    right->addWidget(tvOptions, 3);
    right->addWidget(txtOptionDetails, 1);
    right->addWidget(Label3);
    right->addWidget(txtCfgEdited);

    auto* whole = new QHBoxLayout(centralWidget());
    whole->addLayout(left, 0);
    whole->addLayout(right, 1);
    tvOptions->setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('M')) * 30);
    resize(1100, 720);
}

void frmDeviceCofigurator::ConnectEvents() {
    connect(cmdRdDevInfo, &QPushButton::clicked, this, Guarded([this] { cmdRdDevInfo_Click(); }));
    connect(Command1, &QPushButton::clicked, this, Guarded([this] { Command1_Click(); }));
    connect(cmdFWUpdate, &QPushButton::clicked, this, Guarded([this] { cmdFWUpdate_Click(); }));
    connect(cmdWriteConfig, &QPushButton::clicked, this, Guarded([this] { cmdWriteConfig_Click(); }));
    connect(cmdSelPredefCfg, &QPushButton::clicked, this, Guarded([this] { cmdSelPredefCfg_Click(); }));
    // The Data Base Viewer/Editor has no function.
    connect(mnuEditor, &QAction::triggered, this, [] {});
    connect(mnuOfflineRead, &QAction::triggered, this, [this] { Command1->click(); });
    // A choice in the list, by mouse or keyboard; typing in its edit field
    // changes nothing.
    connect(cmbConfigList, &QComboBox::activated, this, Guarded([this] { cmbConfigList_Click(); }));
    cmbConfigList->installEventFilter(this);

    tree_->onNodeCheck = [this](TreeNode& node) { events_->NodeCheck(node); };
    connect(tvOptions, &OptionTreeView::mouseUp, this, Guarded([this] { events_->MouseUp(); }));
    connect(tvOptions, &OptionTreeView::dblClick, this, Guarded([this] { events_->DblClick(); }));
}

bool frmDeviceCofigurator::eventFilter(QObject* watched, QEvent* event) {
    if (watched == cmbConfigList && event->type() == QEvent::FocusOut) QuietStep([this] { cmbConfigList_Validate(); });
    // Escape in the search field, or in the tree that a search filters,
    // ends the search.
    const bool searching = watched == txtSearch || (watched == tvOptions && filtering_);
    if (searching && event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        QuietStep([this] { SearchEscaped(); });
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmDeviceCofigurator::cmdFWUpdate_Click() {
    const UpdateScreens& screens = CurrentUpdateScreens();
    if (screens.ShowTarnlift) screens.ShowTarnlift(*MSComm1, *portControl_);
}

void frmDeviceCofigurator::ClosePortQuietly() {
    try {
        if (MSComm1->PortOpen()) MSComm1->SetPortOpen(false);
    } catch (const std::exception&) {
        // The end of every road: a port that fails to close is left alone.
    }
}

}  // namespace sb::ui
