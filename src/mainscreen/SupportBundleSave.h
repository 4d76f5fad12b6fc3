#pragma once
#include <QWidget>

namespace sb::ui {

// Help, "Save support bundle…": the doctor's findings, the versions, the
// window's recent wire traffic and the last read in one archive; the user
// picks where it goes and whether the module's VIN goes in.
void SaveSupportBundle(QWidget* parent);

}  // namespace sb::ui
