#include "ScreenTesting.h"

#include <QStyle>
#include <QStyleOptionViewItem>

#include "ui/QtWaitContext.h"

namespace sb::test {

// Never destroyed: widgets of the program's own may outlive the tests.
QApplication& Application() {
    static int argc = 1;
    static char name[] = "screen_test";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        auto* made = new QApplication(argc, argv);
        static ui::QtWaitContext waits;
        SetWaitContext(&waits);
        return made;
    }();
    return *app;
}

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
    // Straight to the widget, so the window system's double-click detection
    // plays no part: two clicks in a row stay two clicks.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    if (!twice) return;
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, at);
}

}  // namespace sb::test
