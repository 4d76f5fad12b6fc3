#pragma once
#include <QMouseEvent>
#include <QTreeWidget>

namespace sb::ui {

// tvOptions: a tree with a check box on every node. Besides Qt's own signals
// it tells when a mouse button comes up (MouseUp) and of a double click
// (DblClick), each after the tree has handled the event itself, so a click
// on a check box has changed the box before MouseUp is raised. The release
// that ends a double click leaves the box alone: only the first click of it
// turns the box.
class OptionTreeView final : public QTreeWidget {
    Q_OBJECT
public:
    explicit OptionTreeView(QWidget* parent = nullptr);

signals:
    void mouseUp();
    void dblClick();

protected:
    using QTreeWidget::edit;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

private:
    bool releaseEndsDoubleClick_ = false;
};

}  // namespace sb::ui
