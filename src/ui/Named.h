#pragma once
#include <QLatin1String>
#include <QObject>

namespace sb::ui {

// A control under its object name, the name by which the screens' code,
// their tests and the tools that drive them find it.
template <class Widget>
Widget* Named(Widget* widget, const char* name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

}  // namespace sb::ui
