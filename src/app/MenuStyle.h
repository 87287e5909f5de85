#pragma once

#include <QProxyStyle>

/// Draws menus by the creature's hand, whatever the desktop's style: dark, round, in the desktop's own font, with one
/// orange for what is chosen. Give it to a QMenu and to each of its submenus.
class MenuStyle : public QProxyStyle {
 public:
    /// `round` needs menus whose windows are translucent; otherwise their corners are square.
    explicit MenuStyle(bool round);

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;

 private:
    void drawPanel(const QRect& rect, QPainter& painter) const;

    bool round_;
};
