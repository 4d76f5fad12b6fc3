#pragma once
#include <QLineEdit>
#include <QPalette>
#include <QPlainTextEdit>
#include <QWidget>

#include "ui/Named.h"

// Boxes that only show: disabled, so that nobody types in them, with their
// text kept as dark as the window's own so that it stays easy to read.
namespace sb::ui {

inline void KeepReadable(QWidget& box) {
    QPalette palette = box.palette();
    palette.setColor(QPalette::Disabled, QPalette::Text, palette.color(QPalette::Active, QPalette::WindowText));
    box.setPalette(palette);
}

template <class Box>
Box* ShowOnly(Box* box, const char* name) {
    Named(box, name);
    box->setEnabled(false);
    KeepReadable(*box);
    return box;
}

// One line.
inline QLineEdit* ShowOnlyBox(QWidget* parent, const char* name) { return ShowOnly(new QLineEdit(parent), name); }

// Several lines, at least `lines` of them in view.
inline QPlainTextEdit* ShowOnlyLines(QWidget* parent, const char* name, int lines) {
    auto* box = ShowOnly(new QPlainTextEdit(parent), name);
    box->setMinimumHeight(box->fontMetrics().lineSpacing() * lines + 10);
    return box;
}

}  // namespace sb::ui
