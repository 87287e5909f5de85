#pragma once

#include <QFile>
#include <stdexcept>

#include "support/XSession.h"

/// The program gtk-drag on the session's screen: a window of 100 x 100 device pixels, to drag from or to drop on. Needs
/// a QCoreApplication.
class DragTool : public Child {
 public:
    enum class Kind { gtkSource, gtkTarget };

    /// Starts it with its window's corner at `place`, and returns once the window is there. `arguments` tell what a
    /// source offers, see gtk-drag.cpp.
    DragTool(const XSession& session, Kind kind, QPoint place, const QList<QByteArray>& arguments = {})
        : Child(command(kind, place, arguments), session.display()), middle_(place + QPoint(50, 50)) {
        if (!waitFor([this] { return said(QStringLiteral("ready")); }, 10))
            throw std::runtime_error("a drag tool does not start");
    }
    ~DragTool() override { kill(); }  // it may hang

    QPoint middle() const { return middle_; }
    /// The lines on standard output so far.
    const QStringList& lines() {
        while (canReadLine()) lines_.append(QFile::decodeName(readLine().trimmed()));
        return lines_;
    }
    bool said(const QString& line) { return lines().contains(line); }

    /// Presses the left button in the middle of a source and moves to `place` like a hand, with the button held.
    /// Returns once the program has begun the drag.
    [[nodiscard]] testing::AssertionResult drag(XSession& session, QPoint place) {
        const auto begun = lines().count(QStringLiteral("drag-begin"));
        session.moveTo(middle_);
        session.press(1);
        // Toolkits begin a drag once the pointer is some pixels away from the press.
        session.glide(middle_, middle_ + QPoint(24, 12), 8, 10);
        const auto result = waitFor([&] { return lines().count(QStringLiteral("drag-begin")) > begun; });
        if (result) session.glide(middle_ + QPoint(24, 12), place, 15, 8);
        return result;
    }

 private:
    static QStringList command(Kind kind, QPoint place, const QList<QByteArray>& arguments) {
        QStringList words{besideTheTest("gtk-drag"),
                          kind == Kind::gtkSource ? QStringLiteral("source") : QStringLiteral("target"),
                          QString::number(place.x()), QString::number(place.y())};
        for (const QByteArray& argument : arguments) words.append(QFile::decodeName(argument));
        return words;
    }

    QPoint middle_;
    QStringList lines_;
};
