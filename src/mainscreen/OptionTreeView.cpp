#include "mainscreen/OptionTreeView.h"

#include <QHeaderView>

namespace sb::ui {

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

bool OptionTreeView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    // The first click of a double click has turned the box already; the
    // release that ends the double click is no click on it.
    if (releaseEndsDoubleClick_ && event && event->type() == QEvent::MouseButtonRelease) return false;
    return QTreeWidget::edit(index, trigger, event);
}

}  // namespace sb::ui
