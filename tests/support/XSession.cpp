#include "support/XSession.h"

#include <signal.h>
#include <sys/prctl.h>
#include <xcb/xtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>
#include <cstring>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
void breathe() {
    if (QCoreApplication::instance()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    QThread::usleep(3000);
}

void require(bool met, const char* what) {
    if (!met) throw std::runtime_error(what);
}
}  // namespace

testing::AssertionResult waitFor(const std::function<bool()>& condition, double seconds) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > seconds * 1000) return testing::AssertionFailure() << "nothing after " << seconds << " s";
        breathe();
    }
    return testing::AssertionSuccess();
}

void letPass(double seconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < seconds * 1000) breathe();
}

QString besideTheTest(const char* program) {
    return QFileInfo(QFileInfo(u"/proc/self/exe"_s).canonicalFilePath()).path() + u'/' + QLatin1String(program);
}

Child::Child(const QStringList& command, const QByteArray& display) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display.isEmpty()) environment.insert(u"DISPLAY"_s, QString::fromLatin1(display));
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    environment.insert(u"NO_AT_BRIDGE"_s, u"1"_s);
    for (const char* scale : {"QT_SCALE_FACTOR", "GDK_SCALE"}) environment.remove(QLatin1String(scale));
    setProcessEnvironment(environment);
    setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    setStandardErrorFile(nullDevice());
    start(command.first(), command.mid(1));
    require(waitForStarted(), "a program does not start");
}

Child::~Child() {
    if (state() == NotRunning) return;
    terminate();
    if (waitForFinished(3000)) return;
    kill();
    waitForFinished();
}

XClient::XClient(const QByteArray& display) : connection_(xcb_connect(display.constData(), nullptr)) {
    require(!xcb_connection_has_error(connection_), "cannot connect to the X server");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

xcb_atom_t XClient::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection_, false, uint16_t(strlen(name)), name);
    return owned(xcb_intern_atom_reply(connection_, cookie, nullptr))->atom;
}

uint32_t XClient::value(xcb_window_t window, const char* property) const {
    const auto cookie = xcb_get_property(connection_, false, window, atom(property), XCB_ATOM_ANY, 0, 1);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    return reply && reply->value_len == 1 ? *static_cast<uint32_t*>(xcb_get_property_value(reply.get())) : 0;
}

void XClient::send(const char* type, xcb_window_t window, uint32_t first, xcb_window_t to) const {
    xcb_client_message_event_t message{XCB_CLIENT_MESSAGE, 32, 0, window, atom(type), {}};
    message.data.data32[0] = first;
    const uint32_t mask = to ? XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : 0;
    xcb_send_event(connection_, false, to ? to : window, mask, reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
}

QRect XClient::frameOf(xcb_window_t window) const {
    const auto frame = owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    return frame ? QRect(frame->x, frame->y, frame->width, frame->height) : QRect();
}

bool XClient::visible(xcb_window_t window) const {
    const auto cookie = xcb_get_window_attributes(connection_, window);
    const auto attributes = owned(xcb_get_window_attributes_reply(connection_, cookie, nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

XSession::XSession(QSize size) {
    server_ = std::make_unique<Child>(
        u"Xvfb -displayfd 1 -dpi 96 -nolisten tcp -noreset +extension COMPOSITE -screen 0 %1x%2x24"_s.arg(size.width())
            .arg(size.height())
            .split(u' '));
    // The server writes its number and a line feed once it listens, and ends when it cannot start.
    while (!server_->canReadLine()) require(server_->waitForReadyRead(), "no X server");
    display_ = ':' + server_->readLine().trimmed();
    client_ = std::make_unique<XClient>(display_);
}

void XSession::startWindowManager() {
    windowManager_ = std::make_unique<Child>(u"openbox --config-file /dev/null"_s.split(u' '), display_);
    require(bool(waitFor([&] { return client_->value(root(), "_NET_SUPPORTING_WM_CHECK"); })), "no window manager");
}

bool XSession::composited() const {
    const auto cookie = xcb_get_selection_owner(xcb(), atom("_NET_WM_CM_S0"));
    return owned(xcb_get_selection_owner_reply(xcb(), cookie, nullptr))->owner != XCB_NONE;
}

void XSession::startCompositor() {
    QStringList command = u"picom --backend xrender --config /dev/null"_s.split(u' ');
    // From version 10 on it loses what changed in every other frame, on a server without a screen.
    if (run(u"picom --version"_s).mid(1).split('.').first().toInt() >= 10) command.append(u"--no-use-damage"_s);
    compositor_ = std::make_unique<Child>(command, display_);
    require(bool(waitFor([this] { return composited(); })), "no compositor");
}

void XSession::stopCompositor() {
    compositor_.reset();
    require(bool(waitFor([this] { return !composited(); })), "the compositor stays");
}

QByteArray XSession::run(const QString& command) const {
    Child program(command.split(u' '), display_);
    EXPECT_TRUE(program.waitForFinished(5000) && program.exitCode() == 0) << command.toStdString();
    return program.readAllStandardOutput();
}

QImage XSession::screenshot(const QRect& area) const {
    const auto cookie = xcb_get_image(xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(), int16_t(area.x()), int16_t(area.y()),
                                      uint16_t(area.width()), uint16_t(area.height()), ~0u);
    const auto reply = owned(xcb_get_image_reply(xcb(), cookie, nullptr));
    if (!reply) return {};
    return QImage(xcb_get_image_data(reply.get()), area.width(), area.height(), QImage::Format_RGB32).copy();
}

QList<xcb_window_t> XSession::stacking() const {
    const auto reply = owned(xcb_query_tree_reply(xcb(), xcb_query_tree(xcb(), root()), nullptr));
    const xcb_window_t* first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

void XSession::fake(int type, int detail, QPoint place) {
    xcb_test_fake_input(xcb(), uint8_t(type), uint8_t(detail), XCB_CURRENT_TIME, root(), int16_t(place.x()),
                        int16_t(place.y()), 0);
    sync();
}

void XSession::glide(QPoint from, QPoint to, int steps, double stepMilliseconds) {
    QElapsedTimer timer;
    timer.start();
    for (int step = 1; step <= steps; ++step) {
        moveTo(from + (to - from) * step / steps);
        while (double(timer.nsecsElapsed()) < step * stepMilliseconds * 1e6) {
            if (QCoreApplication::instance()) QCoreApplication::processEvents();
            QThread::usleep(100);
        }
    }
}

OtherWindow::OtherWindow(const XSession& session, const Options& options)
    : session_(session), options_(options), client_(session.display()), window_(create()) {}

xcb_window_t OtherWindow::create() {
    xcb_connection_t* xcb = client_.xcb();
    const xcb_window_t window = xcb_generate_id(xcb);
    const QRect& area = options_.geometry;
    const uint32_t values[] = {options_.colour, options_.overrideRedirect, XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, client_.root(), int16_t(area.x()), int16_t(area.y()),
                      uint16_t(area.width()), uint16_t(area.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    QByteArray wmClass(options_.instance);
    wmClass.append('\0').append(options_.className).append('\0');
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        uint32_t(wmClass.size()), wmClass.constData());
    const xcb_atom_t fullScreen = client_.atom("_NET_WM_STATE_FULLSCREEN");
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, client_.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        options_.fullScreen, &fullScreen);
    xcb_map_window(xcb, window);
    require(bool(waitFor([&] { return client_.visible(window); })), "a test window stays invisible");
    return window;
}

void OtherWindow::raise() {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(client_.xcb(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(client_.xcb());
}

const QList<int>& OtherWindow::presses() {
    while (const auto event = owned(xcb_poll_for_event(client_.xcb()))) {
        if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS)
            presses_.append(reinterpret_cast<const xcb_button_press_event_t*>(event.get())->detail);
    }
    return presses_;
}
