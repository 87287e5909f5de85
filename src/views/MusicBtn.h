#pragma once

#include <QRectF>
#include <QString>
#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// A button of the music row: a symbol that grows and glows under the pointer. Main thread only.
class MusicBtn {
 public:
    static constexpr double kWidth = 26, kHeight = 20;  ///< points

    /// `middle` is its place in the row; `command` is what a tap sends.
    MusicBtn(Animations& animations, QPointF middle, QString command)
        : middle_(middle), command_(std::move(command)), hover_(animations, 0, 0.002) {}

    const QString& command() const { return command_; }
    bool contains(const QPointF& point) const { return frame().contains(point); }
    void setHover(bool hover, double now) { hover_.aim(hover ? 1 : 0, Animation::easeOut(0.12), now); }
    void setMiddle(const QPointF& middle) { middle_ = middle; }
    void compose(DisplayList& list, int id, const QString& glyph, double now) const;

 private:
    QRectF frame() const { return {middle_.x() - kWidth / 2, middle_.y() - kHeight / 2, kWidth, kHeight}; }

    QPointF middle_;
    QString command_;
    Animated<double> hover_;  // 1 under the pointer
};
