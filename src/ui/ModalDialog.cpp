#include "ui/ModalDialog.h"

namespace sb::ui {
namespace {
ModalHandler handler;
}

void ShowModal(QDialog& dialog) {
    if (handler) {
        handler(dialog);
        return;
    }
    dialog.exec();
}

void SetModalHandler(ModalHandler newHandler) { handler = std::move(newHandler); }

}  // namespace sb::ui
