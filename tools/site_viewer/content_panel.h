#pragma once

#include <QTextBrowser>
#include <vector>

#include "oska/dapo/dapo_types.h"

namespace viewer {

/// Lists the content links of wards. A click opens the link in the desktop's browser.
class ContentPanel final : public QTextBrowser {
public:
    explicit ContentPanel(QWidget* parent = nullptr);

    void showLinks(const std::vector<oska::DapoWard>& wards);
    void showHint();
};

}  // namespace viewer
