#pragma once
#include <QApplication>

namespace sb::test {

// The one application object of a Qt test program, made at first use.
inline QApplication& QtApp() {
    static int argc = 1;
    static char name[] = "servicebay-test";
    static char* argv[] = {name, nullptr};
    static QApplication app(argc, argv);
    return app;
}

}  // namespace sb::test
