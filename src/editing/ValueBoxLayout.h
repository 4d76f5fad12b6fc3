#pragma once
#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace sb::ui {

// The shape that frmBinValEdit and frmStrValEdit share: the length above the
// value box, an optional row of mode buttons, OK and Cancel at the bottom.
void LayOutValueBox(QDialog& form, QLabel& lenLabel, QLineEdit& len, QPlainTextEdit& value, QLayout* modes,
                    QPushButton& ok, QPushButton& cancel);

}  // namespace sb::ui
