#include "support/DragTools.h"

#include <QFile>
#include <stdexcept>

namespace {
QStringList command(DragTool::Kind kind, QPoint place, const QList<QByteArray>& arguments) {
    QStringList command{besideTheTest("gtk-drag"),
                        kind == DragTool::Kind::gtkSource ? QStringLiteral("source") : QStringLiteral("target"),
                        QString::number(place.x()), QString::number(place.y())};
    for (const QByteArray& argument : arguments) command.append(QFile::decodeName(argument));
    return command;
}
}  // namespace

DragTool::DragTool(const XSession& session, Kind kind, QPoint place, const QList<QByteArray>& arguments)
    : Child(command(kind, place, arguments), session.display()), place_(place) {
    if (!waitFor([this] { return said(QStringLiteral("ready")); }, 10))
        throw std::runtime_error("a drag tool does not start");
}

const QStringList& DragTool::lines() {
    while (canReadLine()) lines_.append(QFile::decodeName(readLine().trimmed()));
    return lines_;
}

testing::AssertionResult DragTool::drag(XSession& session, QPoint place) {
    const auto begun = lines().count(QStringLiteral("drag-begin"));
    session.moveTo(middle());
    session.press(1);
    // Toolkits begin a drag once the pointer is some pixels away from the press.
    session.glide(middle(), middle() + QPoint(24, 12), 8, 10);
    const auto result = waitFor([&] { return lines().count(QStringLiteral("drag-begin")) > begun; });
    if (result) session.glide(middle() + QPoint(24, 12), place, 15, 8);
    return result;
}
