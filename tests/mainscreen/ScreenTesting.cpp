#include "ScreenTesting.h"

#include <QFile>
#include <QFont>
#include <QMouseEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTest>
#include <stdexcept>

#include "helpers/Waiting.h"
#include "ui/Latin1.h"
#include "ui/ModalDialog.h"

namespace sb::test {
namespace {

// Mouse events straight to the widget: the window system's double-click
// detection, which goes by time and place, plays no part, so two clicks in a
// row stay two clicks.
void SendMouse(QWidget* widget, QEvent::Type type, QPoint at) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, widget->mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

}  // namespace

void ClickAt(QWidget* widget, QPoint at) {
    SendMouse(widget, QEvent::MouseButtonPress, at);
    SendMouse(widget, QEvent::MouseButtonRelease, at);
}

void DoubleClickAt(QWidget* widget, QPoint at) {
    ClickAt(widget, at);
    SendMouse(widget, QEvent::MouseButtonDblClick, at);
    SendMouse(widget, QEvent::MouseButtonRelease, at);
}

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

ModalScript::Step EnterValue(const std::string& text, const char* button, const char* mode) {
    return [=](QDialog& dialog) {
        if (mode) dialog.findChild<QRadioButton*>(QLatin1String(mode))->setChecked(true);
        if (auto* line = dialog.findChild<QLineEdit*>(QStringLiteral("txtOptValue")))
            line->setText(ui::Latin1(text));
        else
            dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtValue"))->setPlainText(ui::Latin1(text));
        Click(dialog, button);
    };
}

CatalogFolder::CatalogFolder(const std::string& text) {
    QFile file(QDir(dir_.path()).filePath(QStringLiteral("ConfigOptions.xml")));
    if (!file.open(QIODevice::WriteOnly)) throw std::runtime_error("cannot write the catalog");
    file.write(text.data(), static_cast<qint64>(text.size()));
}

std::string CatalogFolder::Path() const {
    return QDir(dir_.path()).filePath(QStringLiteral("ConfigOptions.xml")).toStdString();
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

std::string Screen::Tag(const std::string& key) {
    const QByteArray tag = Item(key)->data(0, ui::QtOptionTree::kTagRole).toByteArray();
    return std::string(tag.constData(), static_cast<size_t>(tag.size()));
}

bool Screen::On(const std::string& key) {
    QTreeWidgetItem* item = Item(key);
    const bool checked = item->checkState(0) == Qt::Checked;
    if (checked != item->font(0).bold()) throw std::logic_error(key + ": ticked and bold disagree");
    return checked;
}

std::string Screen::Color(const std::string& key) {
    const QColor color = Item(key)->foreground(0).color();
    if (color == QColor(0, 0, 0)) return "black";
    if (color == QColor(255, 0, 0)) return "red";
    if (color == QColor(0, 0, 255)) return "blue";
    if (color == form.tvOptions->palette().color(QPalette::Disabled, QPalette::Text)) return "gray";
    return color.name().toStdString();
}

void Screen::ClickBox(const std::string& key) {
    QTreeWidgetItem* item = Item(key);
    for (QTreeWidgetItem* up = item->parent(); up; up = up->parent()) up->setExpanded(true);
    QTreeWidget* view = form.tvOptions;
    view->scrollToItem(item);
    QApplication::processEvents();

    QStyleOptionViewItem option;
    option.initFrom(view->viewport());
    option.rect = view->visualItemRect(item);
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.text = item->text(0);
    option.font = item->font(0);
    option.checkState = item->checkState(0);
    const QRect box = view->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view);
    ClickAt(view->viewport(), box.center());
}

QPoint Screen::TextOf(const std::string& key) {
    QTreeWidgetItem* item = Item(key);
    for (QTreeWidgetItem* up = item->parent(); up; up = up->parent()) up->setExpanded(true);
    QTreeWidget* view = form.tvOptions;
    view->scrollToItem(item);
    QApplication::processEvents();
    const QRect row = view->visualItemRect(item);
    // Well right of the check box.
    return {row.left() + row.width() / 2, row.center().y()};
}

void Screen::ClickText(const std::string& key) { ClickAt(form.tvOptions->viewport(), TextOf(key)); }
void Screen::DoubleClick(const std::string& key) { DoubleClickAt(form.tvOptions->viewport(), TextOf(key)); }

}  // namespace sb::test
