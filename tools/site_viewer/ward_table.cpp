#include "tools/site_viewer/ward_table.h"

#include <QHeaderView>
#include <QPainter>

#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

enum Column { nameColumn, heardColumn, pelioColumn, dapoColumn };

constexpr int COLUMN_COUNT = 4;
constexpr int ROW_HEIGHT = 22;

QIcon iconOf(WardState state) {
    constexpr int SIZE = 20;
    QPixmap pixmap(SIZE, SIZE);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    theme::drawMark(painter, {SIZE / 2.0, SIZE / 2.0}, state);
    return {pixmap};
}

QString dBm(const std::optional<double>& value) { return value ? QString::number(*value) : QString(); }

/// "-68.0", with the age when it is no longer recent.
QString heardText(const WardReading& reading) {
    if (!reading.last) return {};
    auto strength = QString::number(reading.last->dBm, 'f', 1);
    if (reading.age <= RECENTLY) return strength;
    const auto age = std::chrono::duration_cast<std::chrono::seconds>(reading.age).count();
    return QString("%1, %2 s ago").arg(strength).arg(age);
}

}  // namespace

WardTable::WardTable(QWidget* parent) : QTableWidget(0, COLUMN_COUNT, parent) {
    setHorizontalHeaderLabels(
        {"Ward", "Heard, dBm", QString::fromUtf8("Pelio ≥"), QString::fromUtf8("Dapo ≥")});
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    horizontalHeader()->setResizeContentsPrecision(0);  // measure visible rows only: there may be thousands
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(ROW_HEIGHT);
    verticalHeader()->setMinimumSectionSize(ROW_HEIGHT);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(NoSelection);
    setFocusPolicy(Qt::NoFocus);
}

void WardTable::showReadings(const std::vector<WardReading>& readings) {
    static const QIcon ICONS[]{iconOf(WardState::silent), iconOf(WardState::heard), iconOf(WardState::strong),
                               iconOf(WardState::selected)};
    setRowCount(static_cast<int>(readings.size()));
    for (int row = 0; row < rowCount(); ++row) {
        const auto& reading = readings[static_cast<std::size_t>(row)];
        const QString texts[]{QString::fromStdString(reading.ward->name), heardText(reading),
                              dBm(reading.ward->pelioThreshold), dBm(reading.ward->dapoThreshold)};
        for (int column = 0; column < COLUMN_COUNT; ++column) {
            if (item(row, column) == nullptr) setItem(row, column, new QTableWidgetItem);
            if (item(row, column)->text() != texts[column]) item(row, column)->setText(texts[column]);
        }
        if (item(row, nameColumn)->toolTip() == theme::nameOf(reading.state)) continue;
        item(row, nameColumn)->setIcon(ICONS[static_cast<int>(reading.state)]);
        item(row, nameColumn)->setToolTip(theme::nameOf(reading.state));
    }
}

}  // namespace viewer
