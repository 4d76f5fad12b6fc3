#include "ui/StatusBarText.h"

namespace sb::ui {

std::string StatusBarText::Text() const { return bar_.currentMessage().toLatin1().toStdString(); }

void StatusBarText::SetText(const std::string& text) {
    bar_.showMessage(QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())));
}

}  // namespace sb::ui
