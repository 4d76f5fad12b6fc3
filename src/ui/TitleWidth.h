#pragma once
#include <QWidget>

// The window manager cuts a title that is wider than its window, and a
// value form's title is an option's name, which can be long. A dialog under
// KeepTitleWhole is wide enough for its title, now and after each change of
// it.
namespace sb::ui {

// The title as the window system shows it (with the program's name behind
// it), in the bold face that title bars use, with room for the bar's icon
// and buttons; never wider than the window's screen.
int TitleMinimumWidth(const QWidget& window);

// Holds a window's layout at least TitleMinimumWidth wide, whenever its title
// changes and when it is shown; a window without a layout is left as it is.
void KeepTitleWhole(QWidget& window);

}  // namespace sb::ui
