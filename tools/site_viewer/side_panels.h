#pragma once

#include <QTabWidget>
#include <QVBoxLayout>
#include <QWidget>
#include <vector>

namespace viewer {

/// A few titled panels: one below the other, or one at a time where the room is small.
class SidePanels final : public QWidget {
public:
    explicit SidePanels(QWidget* parent = nullptr);

    /// `stretch`: the panel's share of the height. The panels become children of this.
    void add(const QString& title, QWidget* panel, int stretch);
    void setTabbed(bool isTabbed);
    /// Where they are shown one at a time: shows this one.
    void reveal(QWidget* panel);

private:
    struct Panel {
        QString title;
        QWidget* panel;
        int stretch;
    };

    void arrange();

    std::vector<Panel> panels_;
    QWidget* arrangement_ = nullptr;  // holds the panels; made anew when it changes
    QTabWidget* tabs_ = nullptr;      // the arrangement, when it is this
    bool isTabbed_ = false;
};

}  // namespace viewer
