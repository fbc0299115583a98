#pragma once

#include <QEvent>
#include <QTest>
#include <QWidget>
#include <map>

#include "adapters/qt/qt_host_view.h"

namespace oska::qt {

/// A white widget of a host that counts the events that reach it. Hosts that are painted are less than 96
/// points high: Qt paints larger areas on several threads, with locks that the thread sanitizer cannot see.
class Host : public QWidget {
public:
    explicit Host(QSize size, QWidget* parent = nullptr) : QWidget(parent) {
        resize(size);
        setStyleSheet("background: white");
    }

    [[nodiscard]] int count(QEvent::Type type) const {
        const auto found = counts_.find(type);
        return found == counts_.end() ? 0 : found->second;
    }

    [[nodiscard]] QList<QWidget*> widgetsOver() const { return findChildren<QWidget*>(); }

    void clickAt(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(window()->windowHandle(), button, {}, at);
    }

protected:
    bool event(QEvent* event) override {
        ++counts_[event->type()];
        return QWidget::event(event);
    }

private:
    std::map<QEvent::Type, int> counts_;
};

}  // namespace oska::qt
