#include "ui/TitleWidth.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QSpacerItem>
#include <algorithm>

namespace sb::ui {
namespace {

// The bar's icon and three buttons, in lines of the bar's font.
constexpr int kBarButtonLines = 8;

// A strut in the window's own layout rather than a minimum width of the
// window: a layout that sizes its window itself (QMessageBox fixes its size
// from it when it shows) counts it too.
class TitleStrut final : public QObject {
public:
    explicit TitleStrut(QWidget& window) : QObject(&window), window_(window) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == &window_ && (event->type() == QEvent::WindowTitleChange || event->type() == QEvent::Show))
            Fit();
        return false;
    }

private:
    void Fit() {
        QLayout* layout = window_.layout();
        if (!layout) return;
        if (!strut_) {
            strut_ = new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Minimum);
            if (auto* grid = qobject_cast<QGridLayout*>(layout))
                grid->addItem(strut_, grid->rowCount(), 0, 1, std::max(1, grid->columnCount()));
            else if (auto* box = qobject_cast<QBoxLayout*>(layout))
                box->addSpacerItem(strut_);
            else
                layout->addItem(strut_);
        }
        strut_->changeSize(TitleMinimumWidth(window_), 0, QSizePolicy::Minimum, QSizePolicy::Minimum);
        layout->invalidate();
    }

    QWidget& window_;
    QSpacerItem* strut_ = nullptr;  // owned by the layout
};

// As the window system shows it: Qt puts the program's display name behind
// a window's own title.
QString ShownTitle(const QWidget& window) {
    const QString title = window.windowTitle();
    const QString program = QGuiApplication::applicationDisplayName();
    if (program == QCoreApplication::applicationName() || title.endsWith(program)) return title;
    return title.isEmpty() ? program : title + QStringLiteral(" \u2014 ") + program;
}

}  // namespace

int TitleMinimumWidth(const QWidget& window) {
    QFont font = window.font();
    font.setBold(true);
    const QFontMetrics metrics(font);
    const int wanted = metrics.horizontalAdvance(ShownTitle(window)) + kBarButtonLines * metrics.lineSpacing();
    const QScreen* screen = window.screen();
    return screen ? std::min(wanted, screen->availableGeometry().width()) : wanted;
}

void KeepTitleWhole(QWidget& window) { window.installEventFilter(new TitleStrut(window)); }

}  // namespace sb::ui
