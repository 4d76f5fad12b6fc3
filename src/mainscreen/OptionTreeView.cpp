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

void OptionTreeView::mouseReleaseEvent(QMouseEvent* event) {
    QTreeWidget::mouseReleaseEvent(event);
    emit mouseUp();
}

void OptionTreeView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeWidget::mouseDoubleClickEvent(event);
    emit dblClick();
}

}  // namespace sb::ui
