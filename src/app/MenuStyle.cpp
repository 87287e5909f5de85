#include "app/MenuStyle.h"

#include <QPainter>
#include <QStyleOptionMenuItem>
#include <cmath>

#include "views/Colors.h"
#include "views/Shapes.h"

namespace {
// Points.
constexpr int kMargin = 5;
constexpr double kCornerRadius = 11;
constexpr double kRowRadius = 6;
constexpr int kRowPadding = 5;  // above and below the text
constexpr int kTextInset = 12;
constexpr int kCheckColumn = 26;
constexpr int kArrowColumn = 30;
constexpr int kSeparatorHeight = 9;

QColor ground() {
    return gray(0.09);
}

int textLeft(const QStyleOptionMenuItem& item) {
    return item.menuHasCheckableItems ? kCheckColumn : kTextInset;
}

QSize rowSize(const QStyleOptionMenuItem& item) {
    if (item.menuItemType == QStyleOptionMenuItem::Separator) return {1, kSeparatorHeight};
    const QFontMetrics metrics(item.font);
    const int width = metrics.size(Qt::TextSingleLine | Qt::TextHideMnemonic, item.text).width();
    return {textLeft(item) + width + kArrowColumn, metrics.height() + 2 * kRowPadding};
}

QPen pen(const QColor& color) {
    return {color, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void drawCheck(QPainter& painter, const QPointF& center, const QColor& color) {
    painter.setPen(pen(color));
    painter.drawPolyline(
        QPolygonF{center + QPointF(-4.2, 0.2), center + QPointF(-1.3, 3.2), center + QPointF(4.2, -3.4)});
}

void drawArrow(QPainter& painter, const QPointF& center, const QColor& color) {
    painter.setPen(pen(color));
    painter.drawPolyline(
        QPolygonF{center + QPointF(-1.8, -3.6), center + QPointF(1.8, 0), center + QPointF(-1.8, 3.6)});
}

/// The rectangle with its edges aligned to device pixels, for fractional scale factors.
QRectF onPixels(const QRectF& rect, const QPainter& painter) {
    const double ratio = painter.device()->devicePixelRatioF();
    const auto snapped = [ratio](const QPointF& corner) {
        return QPointF(std::floor(corner.x() * ratio), std::floor(corner.y() * ratio)) / ratio;
    };
    return {snapped(rect.topLeft()), snapped(rect.bottomRight())};
}

void drawSeparator(QPainter& painter, const QRectF& row) {
    const double pixel = 1 / painter.device()->devicePixelRatioF();
    const QRectF line(row.left() + kRowRadius, row.center().y(), row.width() - 2 * kRowRadius, pixel);
    painter.fillRect(onPixels(line, painter), white(0.14));
}

void drawRow(const QStyleOptionMenuItem& item, QPainter& painter) {
    const QRectF row(item.rect);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) return drawSeparator(painter, row);
    const bool enabled = item.state & QStyle::State_Enabled;
    const bool chosen = enabled && (item.state & QStyle::State_Selected);
    const QColor ink = chosen ? ground() : white(enabled ? 0.93 : 0.36);
    if (chosen) {
        painter.setPen(Qt::NoPen);
        painter.fillPath(continuousRectangle(onPixels(row, painter), kRowRadius), accentOrange());
    }
    painter.setPen(ink);
    painter.setFont(item.font);
    painter.drawText(row.adjusted(textLeft(item), 0, 0, 0),
                     int(Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic), item.text);
    painter.setBrush(Qt::NoBrush);
    if (item.checked)
        drawCheck(painter, {row.left() + kCheckColumn / 2.0, row.center().y()},
                  enabled && !chosen ? accentOrange() : ink);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        drawArrow(painter, {row.right() - kTextInset, row.center().y()}, chosen ? ink : white(0.6));
}
}  // namespace

MenuStyle::MenuStyle(bool round) : QProxyStyle(QStringLiteral("fusion")), round_(round) {}

int MenuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
        case PM_MenuHMargin:
        case PM_MenuVMargin:
            return kMargin;
        case PM_MenuPanelWidth:
        case PM_MenuDesktopFrameWidth:
            return 0;
        case PM_SubMenuOverlap:
            // Keeps the outlines of the two menus apart.
            return kMargin + 1;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int MenuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returnData) const {
    // Arrow keys skip disabled rows.
    if (hint == SH_Menu_AllowActiveAndDisabled) return 0;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

QSize MenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type == CT_MenuItem && item) return rowSize(*item);
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

void MenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == PE_FrameMenu) return;
    if (element == PE_PanelMenu) return drawPanel(option->rect, *painter);
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void MenuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    // drawPanel() already paints the whole background.
    if (element == CE_MenuEmptyArea || element == CE_MenuHMargin || element == CE_MenuVMargin) return;
    if (element != CE_MenuItem || !item) return QProxyStyle::drawControl(element, option, painter, widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    drawRow(*item, *painter);
    painter->restore();
}

void MenuStyle::drawPanel(const QRect& rect, QPainter& painter) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, round_);
    const double line = 1 / painter.device()->devicePixelRatioF();
    const QPen outline(white(0.17), line);
    const QRectF whole = onPixels(rect, painter);
    const QRectF edge = whole.adjusted(line / 2, line / 2, -line / 2, -line / 2);
    if (round_) {
        painter.setBrush(ground());
        painter.setPen(Qt::NoPen);
        painter.drawPath(continuousRectangle(whole, kCornerRadius));
        painter.strokePath(continuousRectangle(edge, kCornerRadius - line / 2), outline);
    } else {
        painter.fillRect(rect, ground());
        painter.setPen(outline);
        painter.drawRect(edge);
    }
    painter.restore();
}
