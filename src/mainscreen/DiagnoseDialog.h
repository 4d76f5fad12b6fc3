#pragma once
#include <QWidget>

namespace sb::ui {

// Help, "Diagnose connection…": the doctor's findings on this machine for
// every module plugged in, each problem with its fix, in a dialog.
void ShowDiagnosis(QWidget* parent);

}  // namespace sb::ui
