#include "tools/site_viewer/level_picture.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "oska/views/geometry.h"
#include "tools/site_viewer/label_layout.h"
#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

constexpr int LABEL_SIZE = 11;  // pixels
constexpr double LABEL_PADDING = 3;
constexpr double FARTHEST = 1e9;  // pixels of the map image; what is farther away is not shown
constexpr int GRID_LINES = 8;

bool isDrawable(QPointF place) { return std::abs(place.x()) <= FARTHEST && std::abs(place.y()) <= FARTHEST; }

bool isDrawable(const oska::tool::SiteWard& ward) {
    return ward.hasCoordinates() && isDrawable({ward.place.x, ward.place.y});
}

QPointF placeOf(const WardReading& reading) { return {reading.ward->place.x, reading.ward->place.y}; }

/// From pixels of the map image to pixels of the picture.
class Projection {
public:
    Projection(const QRectF& extent, const QRectF& frame) : extent_(extent), frame_(frame) {}
    [[nodiscard]] QPointF operator()(QPointF place) const {
        return {frame_.x() + (place.x() - extent_.x()) * frame_.width() / extent_.width(),
                frame_.y() + (place.y() - extent_.y()) * frame_.height() / extent_.height()};
    }

private:
    QRectF extent_;
    QRectF frame_;
};

/// The finest grid with at most GRID_LINES lines whose step is 1, 2 or 5 times a power of ten.
double gridStep(double length) {
    const double least = length / GRID_LINES;
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) return factor * power;
    }
    return 10 * power;
}

std::vector<double> multiplesOf(double step, double from, double to) {
    std::vector<double> multiples;
    const auto last = std::llround(std::floor(to / step));
    for (auto i = std::llround(std::ceil(from / step)); i <= last; ++i)
        multiples.push_back(static_cast<double>(i) * step);
    return multiples;
}

/// Returns the area of the text.
QRectF drawNote(QPainter& painter, const QRectF& frame, const QString& text) {
    constexpr double INSET = 12;  // beside the frame of the overlay
    const QSizeF size = QFontMetricsF(painter.font()).boundingRect(text).size();
    const QRectF area(frame.topLeft() + QPointF(INSET, INSET), size);
    painter.setPen(theme::FAINT_INK);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip, text);
    return area;
}

/// Returns the area of its note.
QRectF drawPlan(QPainter& painter, const QRectF& extent, const QRectF& frame, const Projection& toPixels) {
    painter.fillRect(frame, theme::PANEL);
    painter.setPen(QPen(theme::LINE, 1));
    const double step = gridStep(std::max(extent.width(), extent.height()));
    for (const double x : multiplesOf(step, extent.left(), extent.right()))
        painter.drawLine(toPixels({x, extent.top()}), toPixels({x, extent.bottom()}));
    for (const double y : multiplesOf(step, extent.top(), extent.bottom()))
        painter.drawLine(toPixels({extent.left(), y}), toPixels({extent.right(), y}));
    return drawNote(painter, frame, QString("no map image; a square is %1 units").arg(step));
}

void drawTrail(QPainter& painter, const std::vector<QPointF>& trail, const Projection& toPixels) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 1; i < trail.size(); ++i) {
        if (!isDrawable(trail[i - 1]) || !isDrawable(trail[i])) continue;
        // Older parts are fainter, down to a limit.
        const auto age = static_cast<int>(std::min<std::size_t>(trail.size() - 1 - i, 8));
        auto colour = theme::PHONE;
        colour.setAlpha(210 - 18 * age);
        painter.setPen(QPen(colour, 3, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(toPixels(trail[i - 1]), toPixels(trail[i]));
    }
}

/// The wards with a place that can be drawn; those that most need a label first.
std::vector<const WardReading*> byImportance(const std::vector<WardReading>& wards) {
    std::vector<const WardReading*> ordered;
    for (const auto& ward : wards) {
        if (isDrawable(*ward.ward)) ordered.push_back(&ward);
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto* a, const auto* b) { return a->state > b->state; });
    return ordered;
}

QString thresholdText(const std::optional<double>& threshold) {
    return threshold ? QString::number(*threshold) : QString::fromUtf8("–");
}

/// "-68 dBm (P -84, D -72)": the last strength, and the thresholds of Pelio and Dapo unless `isBrief`.
QString detailOf(const WardReading& reading, bool isBrief) {
    auto strength = reading.last ? QString("%1 dBm").arg(reading.last->dBm, 0, 'f', 0) : QString("not heard");
    if (isBrief) return strength;
    return strength + " (P " + thresholdText(reading.ward->pelioThreshold) + ", D " +
           thresholdText(reading.ward->dapoThreshold) + ")";
}

struct Label {
    QString name;
    QString detail;
    QSizeF size;
};

Label labelOf(const WardReading& reading, bool isBrief, const QFontMetricsF& bold,
              const QFontMetricsF& plain) {
    Label label{QString::fromStdString(reading.ward->name), detailOf(reading, isBrief), {}};
    const double width = std::max(bold.horizontalAdvance(label.name), plain.horizontalAdvance(label.detail));
    label.size = {width + 2 * LABEL_PADDING, bold.height() + plain.height() + LABEL_PADDING};
    return label;
}

void drawLabel(QPainter& painter, const QRectF& area, const Label& label, WardState state) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, state == WardState::silent ? 190 : 235));
    painter.drawRoundedRect(area, 3, 3);
    const auto text = area.adjusted(LABEL_PADDING, 1, -LABEL_PADDING + 1, -1);
    auto font = painter.font();
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(state == WardState::silent ? theme::FAINT_INK : theme::INK);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, label.name);
    font.setBold(false);
    painter.setFont(font);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, label.detail);
}

void drawLabels(QPainter& painter, LabelLayout& layout, const std::vector<const WardReading*>& wards,
                bool isBrief, const Projection& toPixels) {
    auto font = painter.font();
    font.setPixelSize(LABEL_SIZE);
    painter.setFont(font);
    const QFontMetricsF plain(font);
    font.setBold(true);
    const QFontMetricsF bold(font);
    for (const auto* reading : wards) {
        const auto label = labelOf(*reading, isBrief, bold, plain);
        const auto area = layout.place(toPixels(placeOf(*reading)), theme::MARK_RADIUS, label.size);
        if (area) drawLabel(painter, *area, label, reading->state);
    }
}

void drawWards(QPainter& painter, const QRectF& frame, const QRectF& note, const LevelPicture& picture,
               const Projection& toPixels) {
    constexpr double RADIUS = theme::MARK_RADIUS;
    LabelLayout layout(frame);
    layout.keepFree(note);
    const auto wards = byImportance(picture.wards);
    if (picture.phone && isDrawable(*picture.phone)) {
        const auto tip = toPixels(*picture.phone);
        layout.keepFree({tip.x() - theme::PHONE_WIDTH / 2, tip.y() - theme::PHONE_HEIGHT, theme::PHONE_WIDTH,
                         theme::PHONE_HEIGHT});
    }
    for (auto ward = wards.rbegin(); ward != wards.rend(); ++ward) {
        const auto centre = toPixels(placeOf(**ward));
        layout.keepFree({centre.x() - RADIUS, centre.y() - RADIUS, 2 * RADIUS, 2 * RADIUS});
        theme::drawMark(painter, centre, (*ward)->state);
    }
    drawLabels(painter, layout, wards, frame.width() < BRIEF_BELOW, toPixels);
    if (picture.phone && isDrawable(*picture.phone)) theme::drawPhone(painter, toPixels(*picture.phone));
}

}  // namespace

QRectF extentOf(const LevelPicture& picture) {
    const auto& map = picture.level->map;
    const auto& image = picture.image;
    const QSizeF size(map.image_width, map.image_height);
    if (!image.isNull() && !size.isEmpty() && isDrawable({size.width(), size.height()}))
        return {QPointF(0, 0), size};
    if (!image.isNull()) return QRectF(image.rect());
    QPolygonF places;
    for (const auto& reading : picture.wards) {
        if (isDrawable(*reading.ward)) places.append(placeOf(reading));
    }
    const auto bounds = places.boundingRect();
    const double room = std::max(1.0, 0.15 * std::max(bounds.width(), bounds.height()));
    return bounds.adjusted(-room, -room, room, room);
}

QRectF frameOf(const QRectF& extent, QSizeF size) {
    const auto fit = oska::views::aspectFit({extent.width(), extent.height()}, {size.width(), size.height()});
    return {fit.x, fit.y, fit.width, fit.height};
}

void draw(QPainter& painter, QSizeF size, const LevelPicture& picture) {
    const auto extent = extentOf(picture);
    const auto frame = frameOf(extent, size);
    if (frame.isEmpty()) return;
    const Projection toPixels(extent, frame);
    painter.setClipRect(frame);
    QRectF note;
    if (picture.image.isNull()) {
        note = drawPlan(painter, extent, frame, toPixels);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(frame, picture.image);
    }
    drawTrail(painter, picture.trail, toPixels);
    drawWards(painter, frame, note, picture, toPixels);
}

}  // namespace viewer
