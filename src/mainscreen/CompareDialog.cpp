#include "mainscreen/CompareDialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

#include "configfiles/ConfigCompare.h"
#include "ui/Guarded.h"
#include "ui/Latin1.h"
#include "ui/Named.h"
#include "ui/TitleWidth.h"

namespace sb::ui {
namespace {

QString SideText(const OptionSide& side) {
    if (!side.Present()) return QStringLiteral("(no such option)");
    return Latin1(side.Shown) + (side.Hidden ? QStringLiteral("  (hidden)") : QString());
}

}  // namespace

frmCompareConfig::frmCompareConfig(const DeviceInfo& thisCatalog, const std::string& thisImage,
                                   const DeviceInfo& thatCatalog, const std::string& thatImage,
                                   const QString& thatName, QWidget* parent)
    : QDialog(parent), thisCatalog_(thisCatalog), thisImage_(thisImage), thatCatalog_(thatCatalog),
      thatImage_(thatImage) {
    setObjectName(QStringLiteral("frmCompareConfig"));
    setWindowTitle(QStringLiteral("Compare with ") + thatName);
    tblOptions = Named(new QTableWidget(0, 3, this), "tblOptions");
    tblOptions->setHorizontalHeaderLabels({QStringLiteral("Option"), QStringLiteral("This configuration"), thatName});
    tblOptions->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    tblOptions->verticalHeader()->hide();
    tblOptions->setEditTriggers(QAbstractItemView::NoEditTriggers);
    chkAllOptions = Named(new QCheckBox(QStringLiteral("Show all options"), this), "chkAllOptions");
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tblOptions);
    layout->addWidget(chkAllOptions);
    layout->addWidget(buttons);
    resize(640, 400);
    KeepTitleWhole(*this);  // the title holds a file's path
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(chkAllOptions, &QCheckBox::toggled, this, Guarded([this] { Fill(); }));
    Fill();
}

void frmCompareConfig::Fill() {
    const ConfigComparison comparison =
        CompareConfigurations(thisCatalog_, thisImage_, thatCatalog_, thatImage_,
                              chkAllOptions->isChecked() ? CompareMode::All : CompareMode::Differing);
    tblOptions->setRowCount(static_cast<int>(comparison.Options.size()));
    int row = 0;
    for (const OptionComparison& option : comparison.Options) {
        const QString cells[] = {Latin1(option.Name), SideText(option.A), SideText(option.B)};
        for (int column = 0; column < 3; ++column) {
            auto* item = new QTableWidgetItem(cells[column]);
            if (option.Differs()) {
                QFont bold = item->font();
                bold.setBold(true);
                item->setFont(bold);
            }
            tblOptions->setItem(row, column, item);
        }
        ++row;
    }
}

}  // namespace sb::ui
