#include "desktop/Program.h"

#include <signal.h>
#include <sys/prctl.h>
#include <xcb/shape.h>

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace {

template <class T>
std::unique_ptr<T, decltype(&free)> owned(T* reply) {
    return {reply, &free};
}

/// A POSIX zone in which it is now between one and two in the afternoon.
QString earlyAfternoon() {
    const int hour = QDateTime::currentDateTimeUtc().time().hour();
    return QStringLiteral("TST%1").arg(hour - 13);
}

constexpr int kOverdraw = 52;  // that the window has on both sides of the panel

/// The panel's window, which hangs lower while its shelf has many rows.
bool isPanel(const QRect& frame) {
    return frame.width() == 360 + 2 * kOverdraw && frame.height() >= 230 && frame.top() == 0;
}

}  // namespace

QRect frameOf(const XSession& session, xcb_window_t window) {
    xcb_connection_t* xcb = session.xcb();
    const auto frame = owned(xcb_get_geometry_reply(xcb, xcb_get_geometry(xcb, window), nullptr));
    return frame ? QRect(frame->x, frame->y, frame->width, frame->height) : QRect();
}

bool visible(const XSession& session, xcb_window_t window) {
    const auto cookie = xcb_get_window_attributes(session.xcb(), window);
    const auto attributes = owned(xcb_get_window_attributes_reply(session.xcb(), cookie, nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

Home::Home() {
    for (const char* name : {"config/glimmet", "data", "cache"}) QDir().mkpath(filePath(QLatin1String(name)));
    QDir().mkdir(filePath(QStringLiteral("runtime")), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QByteArray Home::preferences() const {
    QFile file(preferencesFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Home::setPreferences(const QByteArray& contents) const {
    QFile file(preferencesFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        throw std::runtime_error("cannot write preferences");
}

QProcessEnvironment Home::environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "DBUS_SESSION_BUS_ADDRESS"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("HOME"), folder_.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), filePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), filePath(QStringLiteral("cache")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), filePath(QStringLiteral("runtime")));
    environment.insert(QStringLiteral("TZ"), earlyAfternoon());
    return environment;
}

Glimmet::Glimmet(const XSession& session, const Home& home, const QStringList& flags)
    : Glimmet(session, home.environment(), home, flags) {}

Glimmet::Glimmet(const XSession& session, const QProcessEnvironment& environment, const Home& home,
                 const QStringList& flags)
    : Glimmet(
          [&] {
              auto there = environment;
              there.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(session.display()));
              return there;
          }(),
          home, flags) {
    session_ = &session;
}

Glimmet::Glimmet(const QProcessEnvironment& environment, const Home& home, const QStringList& flags)
    : errorFile_(home.filePath(QStringLiteral("errors"))), outputFile_(home.filePath(QStringLiteral("output"))) {
    process_.setProcessEnvironment(environment);
    process_.setStandardErrorFile(errorFile_);
    process_.setStandardOutputFile(outputFile_);
    process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process_.start(QStringLiteral(GLIMMET_PROGRAM), flags);
    process_.waitForStarted();
}

Glimmet::~Glimmet() {
    if (!running()) return;
    terminate();
    if (!process_.waitForFinished(3000)) {
        ADD_FAILURE() << "it does not end when it is told to";
        kill();
    }
}

testing::AssertionResult Glimmet::started() {
    const auto up = [&] { return !errors("glimmet: notch=").isEmpty() && (!session_ || panel()); };
    const auto result = waitFor([&] { return up() || !running(); }, 10);
    if (result && up()) return result;
    return testing::AssertionFailure() << "it did not start; it wrote: " << errors().join(u'\n').toStdString();
}

QStringList Glimmet::lines(const QString& file) {
    QFile stream(file);
    if (!stream.open(QIODevice::ReadOnly)) return {};
    QStringList lines = QString::fromUtf8(stream.readAll()).split(u'\n');
    lines.removeLast();  // empty, or not whole yet
    return lines;
}

QStringList Glimmet::errors(const char* prefix) const {
    QStringList found;
    for (const QString& line : errors()) {
        if (line.startsWith(QLatin1String(prefix))) found.append(line);
    }
    return found;
}

bool Glimmet::running() {
    return process_.state() != QProcess::NotRunning && !process_.waitForFinished(0);
}

std::optional<int> Glimmet::exitCode() {
    if (running() || process_.exitStatus() != QProcess::NormalExit) return {};
    return process_.exitCode();
}

void Glimmet::kill() {
    process_.kill();
    process_.waitForFinished(3000);
}

QList<xcb_window_t> Glimmet::windows() const {
    xcb_connection_t* xcb = session_->xcb();
    const xcb_atom_t atom = session_->atom("_NET_WM_PID");
    QList<xcb_window_t> found;
    for (const xcb_window_t window : session_->stacking()) {
        const auto cookie = xcb_get_property(xcb, false, window, atom, XCB_ATOM_CARDINAL, 0, 1);
        const auto owner = owned(xcb_get_property_reply(xcb, cookie, nullptr));
        if (!owner || owner->value_len != 1) continue;
        if (*static_cast<uint32_t*>(xcb_get_property_value(owner.get())) != uint32_t(pid())) continue;
        if (visible(*session_, window)) found.append(window);
    }
    return found;
}

xcb_window_t Glimmet::panel() const {
    for (const xcb_window_t window : windows()) {
        if (isPanel(frameOf(*session_, window))) return window;
    }
    return XCB_NONE;
}

QRect Glimmet::panelFrame() const {
    return frameOf(*session_, panel()).adjusted(kOverdraw, 0, -kOverdraw, 0);
}

QRegion Glimmet::inputRegion() const {
    xcb_connection_t* xcb = session_->xcb();
    const auto cookie = xcb_shape_get_rectangles(xcb, panel(), XCB_SHAPE_SK_INPUT);
    const auto reply = owned(xcb_shape_get_rectangles_reply(xcb, cookie, nullptr));
    QRegion region;
    if (!reply) return region;
    const xcb_rectangle_t* first = xcb_shape_get_rectangles_rectangles(reply.get());
    for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i)
        region += QRect(first[i].x, first[i].y, first[i].width, first[i].height);
    return region;
}

QList<QRect> Glimmet::menus() const {
    QList<QRect> found;
    for (const xcb_window_t window : windows()) {
        const QRect frame = frameOf(*session_, window);
        if (!isPanel(frame)) found.append(frame);
    }
    return found;
}
