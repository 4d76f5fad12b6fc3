#pragma once
#include <QMouseEvent>
#include <QTreeWidget>

namespace sb::ui {

// tvOptions: a tree with a check box on every node. Besides Qt's own signals
// it tells when a mouse button comes up (MouseUp) and of a double click
// (DblClick), each after the tree has handled the event itself, so a click
// on a check box has changed the box before MouseUp is raised.
class OptionTreeView final : public QTreeWidget {
    Q_OBJECT
public:
    explicit OptionTreeView(QWidget* parent = nullptr);

signals:
    void mouseUp();
    void dblClick();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};

}  // namespace sb::ui
