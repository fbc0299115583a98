#include "tools/site_viewer/legend.h"

#include <QPainter>
#include <vector>

#include "tools/site_viewer/level_picture.h"
#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

constexpr int ROW = 22;  // pixels
constexpr int MARK_SPACE = 20;
constexpr int GAP = 12;

struct Entry {
    QString text;
    void (*draw)(QPainter&, QPointF);
};

template <WardState STATE>
void mark(QPainter& painter, QPointF centre) {
    theme::drawMark(painter, centre, STATE);
}

void phone(QPainter& painter, QPointF centre) {
    painter.save();
    painter.translate(centre + QPointF(0, 10));
    painter.scale(0.5, 0.5);
    theme::drawPhone(painter, {0, 0});
    painter.restore();
}

void trail(QPainter& painter, QPointF centre) {
    painter.setPen(QPen(theme::PHONE, 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre - QPointF(7, 0), centre + QPointF(7, 0));
}

void nothing(QPainter&, QPointF) {}

/// `width`: of the map. A narrow map shows no thresholds, so its legend does not explain them.
std::vector<Entry> entriesFor(int width) {
    std::vector<Entry> entries{{"phone", phone},
                               {"its way", trail},
                               {theme::nameOf(WardState::silent), mark<WardState::silent>},
                               {theme::nameOf(WardState::heard), mark<WardState::heard>},
                               {theme::nameOf(WardState::strong), mark<WardState::strong>},
                               {theme::nameOf(WardState::selected), mark<WardState::selected>}};
    if (width >= BRIEF_BELOW) entries.push_back({"P, D: threshold of Pelio, of Dapo", nothing});
    return entries;
}

/// Calls `each` with every entry and the middle of its left edge. Returns the height of all rows.
template <class Each>
int layOut(int width, const QFontMetrics& metrics, Each each) {
    int x = 0;
    int row = 0;
    for (const auto& entry : entriesFor(width)) {
        const int length = MARK_SPACE + metrics.horizontalAdvance(entry.text);
        if (x > 0 && x + length > width) {
            x = 0;
            ++row;
        }
        each(entry, QPoint(x, row * ROW + ROW / 2));
        x += length + GAP;
    }
    return (row + 1) * ROW;
}

}  // namespace

Legend::Legend(QWidget* parent) : QWidget(parent) { setMinimumHeight(ROW); }

void Legend::resizeEvent(QResizeEvent*) {
    setFixedHeight(layOut(width(), fontMetrics(), [](const Entry&, QPoint) {}));
}

void Legend::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    layOut(width(), fontMetrics(), [&](const Entry& entry, QPoint at) {
        entry.draw(painter, QPointF(at.x() + MARK_SPACE / 2.0 - 2, at.y()));
        painter.setPen(theme::INK);
        painter.drawText(QRect(at.x() + MARK_SPACE, at.y() - ROW / 2, width(), ROW),
                         Qt::AlignLeft | Qt::AlignVCenter, entry.text);
    });
}

}  // namespace viewer
