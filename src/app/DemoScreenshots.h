#pragma once
#include <QString>

#include "mainscreen/frmDeviceCofigurator.h"

namespace sb::ui {

// Drives the program the way a technician would, for the pictures of the
// documentation: reads the first module in boot mode, opens each form, and
// saves each screen as a PNG in folder. Answers the program's exit status.
int TakeDemoScreenshots(frmDeviceCofigurator& form, const QString& folder);

}  // namespace sb::ui
