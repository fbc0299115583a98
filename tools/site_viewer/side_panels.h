#pragma once

#include <QTabWidget>
#include <QVBoxLayout>
#include <QWidget>
#include <vector>

namespace viewer {

/// A few panels with titles: one below the other, or as tabs where there is little space.
class SidePanels final : public QWidget {
public:
    explicit SidePanels(QWidget* parent = nullptr);

    /// `stretch`: the panel's share of the height. The panels become children of this.
    void add(const QString& title, QWidget* panel, int stretch);
    void setTabbed(bool isTabbed);
    /// Shows the tab of `panel`; without tabs all panels are visible already.
    void reveal(QWidget* panel);

private:
    struct Panel {
        QString title;
        QWidget* panel;
        int stretch;
    };

    void arrange();

    std::vector<Panel> panels_;
    QWidget* arrangement_ = nullptr;  // holds the panels; replaced by setTabbed
    QTabWidget* tabs_ = nullptr;      // the same widget if it is tabs, otherwise null
    bool isTabbed_ = false;
};

}  // namespace viewer
