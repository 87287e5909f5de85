#include "support/DragTools.h"

#include <signal.h>

#include <QFile>
#include <stdexcept>

namespace {
QString program(DragTool::Kind kind) {
    switch (kind) {
        case DragTool::Kind::gtkSource:
            return QStringLiteral(GLIMMET_TOOLS "/gtk-drag-source");
        case DragTool::Kind::qtSource:
            return QStringLiteral(GLIMMET_TOOLS "/qt-drag-source");
        case DragTool::Kind::gtkTarget:
            return QStringLiteral(GLIMMET_TOOLS "/gtk-drop-target");
    }
    return {};
}
}  // namespace

DragTool::DragTool(const XSession& session, Kind kind, QPoint place, const QList<QByteArray>& arguments)
    : place_(place) {
    QStringList all{QString::number(place.x()), QString::number(place.y())};
    for (const QByteArray& argument : arguments) all.append(QFile::decodeName(argument));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(session.display()));
    environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
    environment.remove(QStringLiteral("GDK_SCALE"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.remove(QStringLiteral("QT_SCALE_FACTOR"));
    process_.setProcessEnvironment(environment);
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start(program(kind), all);
    if (!waitFor([this] { return said(QStringLiteral("ready")); }, 10)) throw std::runtime_error("no drag tool");
}

DragTool::~DragTool() {
    process_.kill();  // even where it has stopped itself
    process_.waitForFinished();
}

const QStringList& DragTool::lines() {
    while (process_.canReadLine()) lines_.append(QFile::decodeName(process_.readLine().trimmed()));
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
