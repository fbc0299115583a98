#pragma once

#include <QWidget>

namespace viewer {

/// Explains the marks on the map, in as many rows as the width needs.
class Legend final : public QWidget {
public:
    explicit Legend(QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace viewer
