#include "tools/site_viewer/side_panels.h"

#include <QLabel>

namespace viewer {
namespace {

QLabel* titleLabel(const QString& text) {
    auto* const label = new QLabel(text);
    auto font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

}  // namespace

SidePanels::SidePanels(QWidget* parent) : QWidget(parent) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

void SidePanels::add(const QString& title, QWidget* panel, int stretch) {
    panels_.push_back({title, panel, stretch});
    arrange();
}

void SidePanels::setTabbed(bool isTabbed) {
    if (isTabbed == isTabbed_) return;
    isTabbed_ = isTabbed;
    arrange();
}

void SidePanels::reveal(QWidget* panel) {
    if (tabs_ != nullptr) tabs_->setCurrentWidget(panel);
}

void SidePanels::arrange() {
    for (const auto& [title, panel, stretch] : panels_) panel->setParent(this);
    delete arrangement_;
    tabs_ = isTabbed_ ? new QTabWidget : nullptr;
    arrangement_ = isTabbed_ ? tabs_ : new QWidget;
    auto* const column = isTabbed_ ? nullptr : new QVBoxLayout(arrangement_);
    if (column != nullptr) column->setContentsMargins(0, 0, 0, 0);
    for (const auto& [title, panel, stretch] : panels_) {
        if (tabs_ != nullptr) {
            tabs_->addTab(panel, title);
        } else {
            column->addWidget(titleLabel(title));
            column->addWidget(panel, stretch);
            panel->show();
        }
    }
    layout()->addWidget(arrangement_);
}

}  // namespace viewer
