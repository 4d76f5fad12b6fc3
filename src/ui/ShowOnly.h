#pragma once
#include <QPalette>
#include <QWidget>

namespace sb::ui {

// A box that only shows (disabled, so nobody types in it) keeps its text as
// dark as the window's own, so that it stays easy to read.
inline void KeepReadable(QWidget& box) {
    QPalette palette = box.palette();
    palette.setColor(QPalette::Disabled, QPalette::Text, palette.color(QPalette::Active, QPalette::WindowText));
    box.setPalette(palette);
}

}  // namespace sb::ui
