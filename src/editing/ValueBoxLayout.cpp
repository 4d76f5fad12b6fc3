#include "editing/ValueBoxLayout.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "ui/ShowOnly.h"

namespace sb::ui {

void LayOutValueBox(QDialog& form, QLabel& lenLabel, QLineEdit& len, QPlainTextEdit& value, QLayout* modes,
                    QPushButton& ok, QPushButton& cancel) {
    len.setEnabled(false);
    KeepReadable(len);
    len.setMaximumWidth(form.fontMetrics().horizontalAdvance(QStringLiteral("0000000000")));
    // Hex text lines up in a fixed-width font.
    value.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    value.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    value.setMinimumSize(form.fontMetrics().horizontalAdvance(QLatin1Char('0')) * 52,
                         form.fontMetrics().lineSpacing() * 5);
    ok.setDefault(false);
    ok.setAutoDefault(false);
    cancel.setAutoDefault(false);

    auto* top = new QHBoxLayout;
    top->addWidget(&lenLabel);
    top->addWidget(&len);
    top->addStretch();
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(&ok);
    buttons->addWidget(&cancel);
    auto* layout = new QVBoxLayout(&form);
    layout->addLayout(top);
    layout->addWidget(&value);
    if (modes) layout->addLayout(modes);
    layout->addLayout(buttons);
}

}  // namespace sb::ui
