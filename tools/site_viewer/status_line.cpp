#include "tools/site_viewer/status_line.h"

#include <QFontMetrics>
#include <QPainter>

#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

constexpr int GAP = 8;  // pixels

}  // namespace

StatusLine::StatusLine(const QString& title, QWidget* parent)
    : QWidget(parent), title_(title.simplified()), titleFont_(font()) {
    titleFont_.setBold(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void StatusLine::setTitleSize(int pixels) {
    titleFont_.setPixelSize(pixels);
    updateGeometry();
}

void StatusLine::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    const auto whole = title_ + " " + text_;
    setToolTip(whole.toHtmlEscaped());
    setAccessibleName(whole);
    update();
}

QSize StatusLine::sizeHint() const { return {0, QFontMetrics(titleFont_).height() + 2}; }

void StatusLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(theme::INK);
    const QFontMetrics titleMetrics(titleFont_);
    const auto title = titleMetrics.elidedText(title_, Qt::ElideRight, width());
    const int baseline = titleMetrics.ascent() + 1;
    painter.setFont(titleFont_);
    painter.drawText(0, baseline, title);
    const int begin = titleMetrics.horizontalAdvance(title) + GAP;
    painter.setFont(font());
    painter.drawText(begin, baseline,
                     fontMetrics().elidedText(text_.simplified(), Qt::ElideRight, width() - begin));
}

}  // namespace viewer
