#pragma once

#include <QTableWidget>
#include <vector>

#include "tools/site_viewer/ward_reading.h"

namespace viewer {

/// Lists the wards of a level: mark, name, last strength, thresholds of both services.
class WardTable final : public QTableWidget {
public:
    explicit WardTable(QWidget* parent = nullptr);

    void showReadings(const std::vector<WardReading>& readings);
};

}  // namespace viewer
