#include "platform/linux/SessionRestart.h"

#include <QGuiApplication>
#include <QSessionManager>

namespace {

const QString kSession = QStringLiteral("-session");

}  // namespace

QStringList toolkitArguments(const QStringList& arguments) {
    const qsizetype session = arguments.indexOf(kSession);
    // Without an id, QApplication would exit.
    if (session < 1 || session + 1 >= arguments.size())
        return arguments.first(std::min<qsizetype>(arguments.size(), 1));
    return {arguments.first(), kSession, arguments[session + 1]};
}

void restartWith(const QStringList& arguments) {
    QStringList own = arguments.mid(1);
    if (const qsizetype session = own.indexOf(kSession); session >= 0)
        own.remove(session, std::min<qsizetype>(2, own.size() - session));
    const auto tell = [own](QSessionManager& session) {
        session.setRestartCommand(QStringList{QCoreApplication::applicationFilePath()} + own +
                                  QStringList{kSession, session.sessionId() + u'_' + session.sessionKey()});
    };
    QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, qGuiApp, tell, Qt::DirectConnection);
    QObject::connect(qGuiApp, &QGuiApplication::saveStateRequest, qGuiApp, tell, Qt::DirectConnection);
}
