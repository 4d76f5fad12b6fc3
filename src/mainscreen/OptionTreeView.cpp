#include "mainscreen/OptionTreeView.h"

#include <QHeaderView>
#include <QStyledItemDelegate>

#include "ui/Latin1.h"

namespace sb::ui {
namespace {

TreeKey KeyOf(const QKeyEvent& event) {
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return TreeKey::Other;
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return TreeKey::Return;
        case Qt::Key_F2:
            return TreeKey::F2;
        case Qt::Key_Space:
            return TreeKey::Space;
        case Qt::Key_Plus:
        case Qt::Key_Minus:
        case Qt::Key_Asterisk:
            return TreeKey::Sign;
        default:
            break;
    }
    const QString text = event.text();
    return !text.isEmpty() && text.at(0).isPrint() ? TreeKey::Text : TreeKey::Other;
}

constexpr int kMarkSize = 10;  // the marks beside option texts are this small

// Every option row keeps the room of a decoration, so that the texts of the
// options that carry a mark and of those that don't stand in one column.
class OptionRowDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const bool optionRow = index.parent().isValid() && !index.parent().parent().isValid();
        if (optionRow) option->features |= QStyleOptionViewItem::HasDecoration;
    }
};

}  // namespace

OptionTreeView::OptionTreeView(QWidget* parent) : QTreeWidget(parent) {
    setObjectName(QStringLiteral("tvOptions"));
    setColumnCount(1);
    setHeaderHidden(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    // All rows have the same height (bold text included): the view need not
    // measure thousands of rows.
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(false);
    // One column as wide as the view: measuring every row for the width
    // would cost more than a click may take on a large catalog.
    header()->setStretchLastSection(true);
    setItemDelegate(new OptionRowDelegate(this));
    setIconSize(QSize(kMarkSize, kMarkSize));
}

void OptionTreeView::mousePressEvent(QMouseEvent* event) {
    releaseEndsDoubleClick_ = false;
    QTreeWidget::mousePressEvent(event);
}

void OptionTreeView::mouseReleaseEvent(QMouseEvent* event) {
    QTreeWidget::mouseReleaseEvent(event);
    releaseEndsDoubleClick_ = false;
    emit mouseUp();
}

void OptionTreeView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeWidget::mouseDoubleClickEvent(event);
    releaseEndsDoubleClick_ = true;
    emit dblClick();
}

void OptionTreeView::keyPressEvent(QKeyEvent* event) {
    const TreeKey key = KeyOf(*event);
    if (key != TreeKey::Other && onKey) {
        // The keyboard works on the row under its cursor, which a double
        // click or a click on a box may have left unselected.
        if (QTreeWidgetItem* current = currentItem(); current && !current->isSelected()) current->setSelected(true);
        if (onKey(key, Bytes(event->text()), static_cast<int64_t>(event->timestamp()))) return;
    }
    QTreeWidget::keyPressEvent(event);
}

bool OptionTreeView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    // The first click of a double click has turned the box already; the
    // release that ends the double click is no click on it.
    if (releaseEndsDoubleClick_ && event && event->type() == QEvent::MouseButtonRelease) return false;
    return QTreeWidget::edit(index, trigger, event);
}

}  // namespace sb::ui
