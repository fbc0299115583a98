#include "tools/site_viewer/content_panel.h"

#include <QDesktopServices>
#include <QUrl>

#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

QString escaped(const std::string& text) { return QString::fromStdString(text).toHtmlEscaped(); }

/// A bundle may have any URL, also one that starts a program.
bool opensInBrowser(const QUrl& url) { return url.scheme() == "http" || url.scheme() == "https"; }

QString linkText(const oska::WardContents& contents) {
    const auto address = escaped(contents.url.absoluteString());
    return "<p style='margin:2px 0 6px 12px'><a href=\"" + address + "\">" + escaped(contents.name) +
           "</a><br><span style='color:" + theme::FAINT_INK.name() + "; font-size:11px'>" + address +
           "</span></p>";
}

QString wardText(const oska::DapoWard& ward) {
    QString text = "<p style='margin:4px 0 0 0'><b>" + escaped(ward.name) + "</b> &nbsp;" +
                   QString::number(ward.detected_rssi) + " dBm</p>";
    for (const auto& contents : ward.contents) text += linkText(contents);
    if (ward.contents.empty()) text += "<p style='margin:2px 0 6px 12px'>no links</p>";
    return text;
}

}  // namespace

ContentPanel::ContentPanel(QWidget* parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    QObject::connect(this, &QTextBrowser::anchorClicked, this, [](const QUrl& url) {
        if (opensInBrowser(url)) QDesktopServices::openUrl(url);
    });
    showHint();
}

void ContentPanel::showLinks(const std::vector<oska::DapoWard>& wards) {
    QString text;
    for (const auto& ward : wards) text += wardText(ward);
    setHtml(text);
}

void ContentPanel::showHint() {
    setHtml("<p style='color:" + theme::FAINT_INK.name() +
            "'>When the orange frame is over the map, tap it: the links of the wards near the phone are "
            "listed here.</p>");
}

}  // namespace viewer
