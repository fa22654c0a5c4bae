// The card as a Qt 6 widget: QtCard TITLE ARTWORK. It draws everything itself, but only the parts
// that an update has requested.

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QWidget>

#include "bench/rivals/CardFace.hpp"

namespace quorvane::rivals {
namespace {

using std::chrono::milliseconds;

QRectF rectOf(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

QColor colorOf(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QFont fontOf(double size, QFont::Weight weight) {
    QFont font{kFontFamily};
    font.setPixelSize(static_cast<int>(size));
    font.setWeight(weight);
    return font;
}

class QtCard : public QWidget {
public:
    QtCard(const QString& title, const QString& artwork) {
        setWindowFlag(Qt::FramelessWindowHint);
        setAttribute(Qt::WA_OpaquePaintEvent);  // every pixel is drawn over
        setFixedSize(static_cast<int>(kCard.width), static_cast<int>(kCard.height));
        setScaledArtwork(QImage{artwork});
        renderTitle(title);
        marquee_.fieldWidth = geometry_.title.width;
        marquee_.start = start_;
        frames_.setSingleShot(true);
        frames_.setTimerType(Qt::PreciseTimer);
        connect(&frames_, &QTimer::timeout, this, [this] { moveTitle(); });
        connect(&seconds_, &QTimer::timeout, this,
                [this] { update(rectOf(clockArea(geometry_)).toAlignedRect()); });
        moveTitle();
        seconds_.start(milliseconds{1000});
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter{this};
        painter.setRenderHint(QPainter::Antialiasing);
        const QRect area = event->rect();
        const auto isAsked = [&](const Rect& rect) { return rectOf(rect).intersects(area); };
        drawPanel(painter, area);
        if (isAsked(titleNow().frame)) drawTitle(painter);
        if (isAsked(clockArea(geometry_))) drawClock(painter);
        // These parts never change, so an update requests them only together.
        if (isAsked(geometry_.volume)) drawRest(painter);
    }

private:
    void setScaledArtwork(const QImage& image) {
        const auto side = static_cast<int>(geometry_.artwork.width * devicePixelRatioF());
        artwork_ = QPixmap::fromImage(
            image.scaled(side, side, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation));
    }

    // Once, as a picture: moving it costs less than drawing its letters again.
    void renderTitle(const QString& text) {
        const QFont font = fontOf(PlayerLayout::kTrackTextSize, QFont::DemiBold);
        marquee_.textWidth = QFontMetricsF{font}.horizontalAdvance(text);
        const double scale = devicePixelRatioF();
        const QSizeF size{marquee_.textWidth, geometry_.title.height};
        title_ = QPixmap{(size * scale).toSize() + QSize{1, 0}};
        title_.setDevicePixelRatio(scale);
        title_.fill(colorOf(kPanel));
        QPainter painter{&title_};
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRectF{{0, 0}, size + QSizeF{20, 0}}, Qt::AlignVCenter, text);
    }

    // Wider than its field by the fades at its ends.
    TextNode titleNow() const { return marquee_.node(geometry_.title, now()); }

    void moveTitle() {
        update(rectOf(titleNow().frame).toAlignedRect());
        if (const auto wait = marquee_.nextChange(now(), devicePixelRatioF()))
            frames_.start(std::chrono::ceil<milliseconds>(*wait));
    }

    void drawPanel(QPainter& painter, const QRect& area) const {
        constexpr double kCorner = PlayerLayout::kCardCornerRadius;
        const QRectF card = rectOf(kCard);
        if (card.adjusted(kCorner, 0, -kCorner, 0).contains(area)) {
            painter.fillRect(area, colorOf(kPanel));
            return;
        }
        painter.fillRect(area, colorOf(kBackdrop));
        painter.setPen(Qt::NoPen);
        painter.setBrush(colorOf(kPanel));
        painter.drawRoundedRect(card, kCorner, kCorner);
    }

    void drawTitle(QPainter& painter) const {
        const TextNode title = titleNow();
        const Rect& area = title.frame;
        const double scale = devicePixelRatioF();
        const double first = area.x - std::floor(title.scroll->offset * scale) / scale;
        painter.setClipRect(rectOf(area));
        painter.drawPixmap(QPointF{first, area.y}, title_);
        painter.drawPixmap(QPointF{first + marquee_.textWidth + title.scroll->gap, area.y}, title_);
        const double fadeWidth = title.scroll->fade;
        fade(painter, {area.x, area.y, fadeWidth, area.height}, 1);
        fade(painter, {area.maxX() - fadeWidth, area.y, fadeWidth, area.height}, 0);
        painter.setClipping(false);
    }

    static void fade(QPainter& painter, const Rect& area, double opacityLeft) {
        QColor color = colorOf(kPanel);
        QLinearGradient gradient{area.x, 0, area.maxX(), 0};
        color.setAlphaF(static_cast<float>(opacityLeft));
        gradient.setColorAt(0, color);
        color.setAlphaF(static_cast<float>(1 - opacityLeft));
        gradient.setColorAt(1, color);
        painter.fillRect(rectOf(area), gradient);
    }

    static void drawBars(QPainter& painter, const std::vector<Bar>& bars) {
        painter.setPen(Qt::NoPen);
        for (const Bar& bar : bars) {
            painter.setBrush(colorOf(Color::white(bar.opacity)));
            const double radius = std::min(bar.frame.width, bar.frame.height) / 2;
            painter.drawRoundedRect(rectOf(bar.frame), radius, radius);
        }
    }

    void drawText(QPainter& painter, const Rect& frame, double size, Qt::Alignment alignment,
                  const std::string& text) const {
        painter.setFont(fontOf(size, QFont::Normal));
        painter.setPen(colorOf(Color::white(PlayerLayout::kSecondaryOpacity)));
        painter.drawText(rectOf(frame), static_cast<int>(alignment | Qt::AlignVCenter),
                         QString::fromStdString(text));
    }

    void drawClock(QPainter& painter) const {
        const double position = secondsSince(start_);
        drawBars(painter, progressBars(geometry_, position));
        drawText(painter, geometry_.elapsed, PlayerLayout::kTimeTextSize, Qt::AlignLeft,
                 TimeFormatting::text(position));
        drawText(painter, geometry_.remaining, PlayerLayout::kTimeTextSize, Qt::AlignRight,
                 TimeFormatting::remaining(kDuration, position));
    }

    void drawRest(QPainter& painter) const {
        drawText(painter, geometry_.artist, PlayerLayout::kTrackTextSize, Qt::AlignLeft, kArtist);
        drawBars(painter, volumeBars(geometry_));
        for (const Outline& outline : symbols(geometry_)) {
            QPolygonF polygon;
            for (const Point& point : outline.points) polygon << QPointF{point.x, point.y};
            const QColor color = colorOf(Color::white(outline.opacity));
            painter.setPen(outline.pen > 0 ? QPen{color, outline.pen} : QPen{Qt::NoPen});
            painter.setBrush(outline.pen > 0 ? QBrush{} : QBrush{color});
            outline.pen > 0 ? painter.drawPolyline(polygon) : painter.drawPolygon(polygon);
        }
        QPainterPath rounded;
        constexpr double kCorner = PlayerLayout::kArtworkCornerRadius;
        rounded.addRoundedRect(rectOf(geometry_.artwork), kCorner, kCorner);
        painter.setClipPath(rounded);
        painter.drawPixmap(rectOf(geometry_.artwork).toRect(), artwork_);
    }

    const PlayerGeometry geometry_ = PlayerGeometry::make(true, false);
    const Instant start_ = now();
    MarqueeText marquee_;
    QPixmap artwork_;
    QPixmap title_;
    QTimer frames_;
    QTimer seconds_;
};

}  // namespace
}  // namespace quorvane::rivals

int main(int count, char** arguments) {
    QApplication application{count, arguments};
    if (count != 3) return 2;
    quorvane::rivals::QtCard card{arguments[1], arguments[2]};
    card.show();
    return QApplication::exec();
}
