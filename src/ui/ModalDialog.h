#pragma once
#include <QDialog>
#include <functional>

// Every modal show of the screens goes through ShowModal: exec() of the
// dialog, which returns when the dialog hides. Tests install a handler that
// works the dialog's controls instead, so no event loop has to wait for a
// person.
namespace sb::ui {

void ShowModal(QDialog& dialog);

using ModalHandler = std::function<void(QDialog& dialog)>;
// An empty handler brings the real modal show back.
void SetModalHandler(ModalHandler handler);

}  // namespace sb::ui
