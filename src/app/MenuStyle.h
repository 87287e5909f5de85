#pragma once

#include <QProxyStyle>

/// Draws menus in the creature's own style, whatever the desktop's: dark and rounded, in the desktop's font, with the
/// selected row in orange. Set it on a QMenu and on each of its submenus.
class MenuStyle : public QProxyStyle {
 public:
    /// `round` corners require translucent menu windows.
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
