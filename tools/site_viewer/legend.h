#pragma once

#include <QWidget>

namespace viewer {

/// What the marks on the map mean, in as many rows as it takes.
class Legend final : public QWidget {
public:
    explicit Legend(QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace viewer
