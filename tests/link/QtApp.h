#pragma once
#include <QApplication>

namespace sb::test {

// The one application object of a Qt test program, made at first use.
inline QApplication& QtApp() {
    static int argc = 1;
    static char* argv[] = {const_cast<char*>("servicebay-test"), nullptr};
    static QApplication app(argc, argv);
    return app;
}

}  // namespace sb::test
