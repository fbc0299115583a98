#pragma once

#include <QTableWidget>
#include <vector>

#include "tools/site_viewer/ward_reading.h"

namespace viewer {

/// The wards of a level in full: mark, name, last strength, both services' thresholds.
class WardTable final : public QTableWidget {
public:
    explicit WardTable(QWidget* parent = nullptr);

    void showReadings(const std::vector<WardReading>& readings);
};

}  // namespace viewer
