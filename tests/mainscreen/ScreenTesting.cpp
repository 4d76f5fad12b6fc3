#include "ScreenTesting.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTest>
#include <stdexcept>

#include "helpers/Waiting.h"
#include "ui/Latin1.h"
#include "ui/ModalDialog.h"
#include "ui/QtWaitContext.h"

namespace sb::test {

QApplication& Application() {
    static int argc = 1;
    static char name[] = "screen_test";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        auto* made = new QApplication(argc, argv);
        QApplication::setApplicationDisplayName(QStringLiteral("ServiceBay"));
        static ui::QtWaitContext waits;
        SetWaitContext(&waits);
        return made;
    }();
    return *app;
}

ModalScript::ModalScript() {
    ui::SetModalHandler([this](QDialog& dialog) {
        shown.push_back(dialog.objectName().toStdString());
        if (steps.empty()) return;
        Step step = std::move(steps.front());
        steps.pop_front();
        step(dialog);
    });
}

ModalScript::~ModalScript() { ui::SetModalHandler({}); }

void Click(QDialog& dialog, const char* button) {
    auto* found = dialog.findChild<QPushButton*>(QLatin1String(button));
    if (!found) throw std::logic_error(std::string("no button ") + button);
    found->click();
}

Screen::Screen(const std::string& configOptionsPath) : form((Application(), configOptionsPath)) {
    form.show();
    if (!QTest::qWaitForWindowExposed(&form)) throw std::runtime_error("the main screen was not shown");
}

QTreeWidgetItem* Screen::Item(const std::string& key) {
    TreeNode* node = form.Tree().Find(key);
    if (!node) throw std::out_of_range("no node " + key);
    return form.Tree().ItemOf(*node);
}

std::string Screen::Text(const std::string& key) { return ui::Bytes(Item(key)->text(0)); }

bool Screen::On(const std::string& key) { return Item(key)->checkState(0) == Qt::Checked && Item(key)->font(0).bold(); }

void Screen::Click(const std::string& key, bool onBox, bool twice) {
    QTreeWidgetItem* item = Item(key);
    QTreeWidget* view = form.tvOptions;
    view->scrollToItem(item);  // expands the node's parents
    QApplication::processEvents();
    QStyleOptionViewItem option;
    option.initFrom(view->viewport());
    option.rect = view->visualItemRect(item);
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    const QRect box = view->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view);
    // Well right of the box for the text.
    const QPoint at = onBox ? box.center() : QPoint(option.rect.center().x(), box.center().y());
    // Straight to the widget: the window system's double-click detection,
    // which goes by time and place, plays no part, so two clicks in a row
    // stay two clicks.
    const QEvent::Type steps[] = {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                                  QEvent::MouseButtonRelease};
    for (int step = 0; step < (twice ? 4 : 2); ++step) {
        const Qt::MouseButtons held = steps[step] == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(steps[step], at, view->viewport()->mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    }
}

}  // namespace sb::test
