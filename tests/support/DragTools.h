#pragma once

#include "support/XSession.h"

/// The program gtk-drag on the session's screen: a window of 100 x 100 device pixels, to drag from or to drop on. Needs
/// a QCoreApplication.
class DragTool : public Child {
 public:
    enum class Kind { gtkSource, gtkTarget };

    /// Starts it with its window's corner at `place`, and returns once the window is there. `arguments` tell what a
    /// source offers, see gtk-drag.cpp.
    DragTool(const XSession& session, Kind kind, QPoint place, const QList<QByteArray>& arguments = {});
    ~DragTool() override { kill(); }  // it may hang

    QPoint middle() const { return place_ + QPoint(50, 50); }
    /// The lines on standard output so far.
    const QStringList& lines();
    bool said(const QString& line) { return lines().contains(line); }

    /// Presses the left button in the middle of a source and moves to `place` like a hand, with the button held.
    /// Returns once the program has begun the drag.
    [[nodiscard]] testing::AssertionResult drag(XSession& session, QPoint place);

 private:
    QPoint place_;
    QStringList lines_;
};
