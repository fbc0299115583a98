#pragma once

#include <QString>
#include <QWidget>

namespace viewer {

/// A bold title and a text beside it, in one line. Text that is too long ends with dots; the tool tip has all
/// of it.
class StatusLine final : public QWidget {
public:
    explicit StatusLine(const QString& title, QWidget* parent = nullptr);

    void setTitleSize(int pixels);
    void setText(const QString& text);
    [[nodiscard]] const QString& text() const { return text_; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString title_;
    QFont titleFont_;
    QString text_;
};

}  // namespace viewer
