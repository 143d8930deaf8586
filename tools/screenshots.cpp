#include "ui/Label.h"
#include "ui/Placement.h"
#include "ui/VLActivityIndicatorView.h"
#include "ui/VLRGBAColor.h"
#include "ui/VLSimpleProgressView.h"
#include "ui/VLTextAttributes.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QPainter>

// Draws what the library draws itself into PNG files in the folder given, for a plain screen and a dense one.

namespace velmora {

namespace {

const QString kSentence = QStringLiteral("پژوهش گچ، ژاله و ۵۰٪ تخفیف (Velmora 3) برای شما");

/// Light above and dark below, as pictures may be.
class Sheet : public QWidget {
public:
    Sheet() { resize(420, 620); }

    void outline(const QRect& place) { outlined_.push_back(place); }

    void add(const VLTextAttributes& attributes, const QString& text, const QRect& place, int lines = 1) {
        auto* label = new Label(this);
        label->setText(text, attributes.attributes());
        label->setNumberOfLines(lines);
        label->setGeometry(place);
    }

    void addRing(double progress, int x) {
        auto* ring = new VLSimpleProgressView(QRect(x, 400, 44, 44), this);
        ring->setProgress(progress);
        auto attributes = VLTextAttributes::defaultTextAttributesWithFontSize(14.0);
        attributes.setForegroundColor(colorWithR(132, 133, 133, 1.0));
        attributes.setAlignment(TextAlignment::center);
        add(attributes, QStringLiteral("%1%").arg(static_cast<int>(100 * progress)), QRect(x, 400, 44, 44));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(250, 250, 245));
        painter.fillRect(QRect(0, 470, width(), 150), QColor(40, 60, 90));
        painter.setPen(QColor(220, 200, 200));
        for (const auto& place : outlined_) painter.drawRect(place);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        int x = 10;
        for (const char* name : {"Close", "Skip", "SoundOn", "SoundOff"}) {
            const QImage picture(qEnvironmentVariable("VELMORA_RESOURCES") + '/' + name + ".png");
            painter.drawImage(QRect(x, 500, 44, 44), picture);
            painter.drawImage(QRect(x, 350, 44, 44), picture);
            x += 50;
        }
    }

private:
    std::vector<QRect> outlined_;
};

void addTexts(Sheet& sheet) {
    const auto usual = VLTextAttributes::defaultTextAttributesWithFontSize(20);
    const auto fun = VLTextAttributes::funTextAttributesWithFontSize(20);
    const QRect places[] = {{10, 10, 400, 40}, {10, 60, 200, 40}, {10, 110, 400, 50}, {10, 165, 180, 120}};
    for (const auto& place : places) sheet.outline(place);
    sheet.add(usual, kSentence, places[0]);
    sheet.add(usual, kSentence, places[1]);
    sheet.add(fun, kSentence, places[2]);
    sheet.add(fun, kSentence, places[3], 0);

    auto wrapped = usual;
    wrapped.setLineBreakMode(LineBreakMode::byWordWrapping);
    sheet.add(wrapped, kSentence, {220, 165, 190, 90}, 0);
    auto rich = VLTextAttributes::defaultTextAttributesWithFontSize(30);
    rich.setForegroundColor(QColor(Qt::white));
    rich.setStrokeColor(QColor(170, 20, 60), -6);
    rich.setShadow(Shadow{{2, 3}, 4, QColor(0, 0, 0, 180)});
    sheet.add(rich, QStringLiteral("برنده شدید!"), {220, 250, 190, 50});
    auto lines = usual;
    lines.setUnderlineStyle(9);
    lines.setBackgroundColor(QColor(255, 235, 150));
    sheet.add(lines, QStringLiteral("ادامه ویدیو"), {220, 300, 190, 40});
}

void addViews(Sheet& sheet) {
    int x = 10;
    for (const double progress : {0.0, 0.25, 0.5, 0.99}) {
        sheet.addRing(progress, x);
        x += 54;
    }
    auto* panel = new VLActivityIndicatorView(QRect(250, 360, 100, 100), &sheet);
    panel->startAnimating();
    auto* dark = new VLActivityIndicatorView(QRect(250, 490, 100, 100), &sheet);
    dark->startAnimating();
}

bool save(Sheet& sheet, int ratio, const QString& file) {
    QImage image(sheet.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    sheet.render(&image);
    return image.save(file);
}

}  // namespace

}  // namespace velmora

int main(int count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("VELMORA_RESOURCES", VELMORA_RESOURCES, 0);
    const QApplication application(count, arguments);
    if (count != 2) {
        std::fputs("usage: screenshots FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    QDir().mkpath(arguments[1]);
    velmora::Sheet sheet;
    velmora::addTexts(sheet);
    velmora::addViews(sheet);
    sheet.show();
    for (const int ratio : {1, 3}) {
        const auto file = QStringLiteral("%1/views@%2x.png").arg(arguments[1]).arg(ratio);
        if (!velmora::save(sheet, ratio, file)) return EXIT_FAILURE;
        std::puts(qPrintable(file));
    }
    return EXIT_SUCCESS;
}
