#pragma once
#include <QMainWindow>

namespace sb::ui {

// The menu "Help": "Diagnose connection…", the doctor's findings on this
// machine, "Save support bundle…", and "About ServiceBay": the program's version and its license,
// for the technician who reports a fault.
void AddHelpMenu(QMainWindow& window);

}  // namespace sb::ui
