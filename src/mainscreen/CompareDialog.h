#pragma once
#include <QCheckBox>
#include <QDialog>
#include <QTableWidget>
#include <string>

#include "config/Types.h"

namespace sb::ui {

// Two configurations side by side: for each option whose shown text
// differs its name, this value and that value; "Show all options" lists
// the options that agree too. A value that its side's configuration hides
// is marked "(hidden)".
class frmCompareConfig final : public QDialog {
    Q_OBJECT
public:
    frmCompareConfig(const DeviceInfo& thisCatalog, const std::string& thisImage, const DeviceInfo& thatCatalog,
                     const std::string& thatImage, const QString& thatName, QWidget* parent = nullptr);

    QTableWidget* tblOptions;
    QCheckBox* chkAllOptions;

private:
    void Fill();

    const DeviceInfo& thisCatalog_;
    const std::string& thisImage_;
    const DeviceInfo& thatCatalog_;
    const std::string& thatImage_;
};

}  // namespace sb::ui
