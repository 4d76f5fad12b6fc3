#include "ui/MessageBox.h"

#include <QApplication>
#include <QMessageBox>

#include "ui/TitleWidth.h"

namespace sb::ui {
namespace {
MessageHandler handler;
}

MessageAnswer ShowMessage(const std::string& text, MessageButtons buttons) {
    if (handler) return handler(text, buttons);
    QMessageBox box(QMessageBox::NoIcon, QApplication::applicationDisplayName(),
                    QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())),
                    buttons == MessageButtons::OkCancel ? QMessageBox::Ok | QMessageBox::Cancel
                                                        : QMessageBox::Ok);
    KeepTitleWhole(box);
    return box.exec() == QMessageBox::Ok ? MessageAnswer::Ok : MessageAnswer::Cancel;
}

void SetMessageHandler(MessageHandler newHandler) { handler = std::move(newHandler); }

}  // namespace sb::ui
