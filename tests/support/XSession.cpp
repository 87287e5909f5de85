#include "support/XSession.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <cstring>
#include <stdexcept>

namespace {
template <class T>
std::unique_ptr<T, decltype(&free)> owned(T* reply) {
    return {reply, &free};
}

void breathe() {
    if (QCoreApplication::instance()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    QThread::usleep(2000);
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

Child::Child(const std::vector<std::string>& arguments, const std::vector<std::string>& environment, int inherited) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    pid_ = fork();
    require(pid_ >= 0, "cannot fork");
    if (pid_ > 0) return;

    prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that crashes leaves nothing behind
    for (const std::string& variable : environment) putenv(const_cast<char*>(variable.c_str()));
    const int null = open("/dev/null", O_RDWR);
    for (int descriptor = 0; descriptor < 3; ++descriptor) dup2(null, descriptor);
    if (inherited >= 0) fcntl(inherited, F_SETFD, 0);
    execvp(argv[0], argv.data());
    _exit(127);
}

Child::~Child() {
    if (!running()) return;
    kill(pid_, SIGTERM);
    if (!waitFor([this] { return !running(); }, 3)) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

bool Child::running() {
    if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) != 0) pid_ = -1;
    return pid_ > 0;
}

XSession::XSession(const Options& options) {
    int ends[2];
    require(pipe2(ends, O_CLOEXEC) == 0, "cannot make a pipe");
    const std::string screen =
        std::to_string(options.size.width()) + "x" + std::to_string(options.size.height()) + "x24";
    server_ =
        std::make_unique<Child>(std::vector<std::string>{"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0",
                                                         screen, "-dpi", std::to_string(options.dpi), "-nolisten",
                                                         "tcp", "-noreset", "+extension", "COMPOSITE"},
                                std::vector<std::string>{}, ends[1]);
    close(ends[1]);
    // The server writes its number and a line feed once it listens; it closes the pipe when it cannot start.
    char text[16];
    while (!display_.endsWith('\n')) {
        const ssize_t count = read(ends[0], text, sizeof text);
        if (count <= 0) break;
        display_.append(text, int(count));
    }
    close(ends[0]);
    require(display_.endsWith('\n'), "no X server");
    display_ = ':' + display_.trimmed();

    connection_ = xcb_connect(display_.constData(), nullptr);
    require(!xcb_connection_has_error(connection_), "cannot connect to the X server");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

XSession::~XSession() {
    compositor_.reset();
    windowManager_.reset();
    xcb_disconnect(connection_);
}

xcb_atom_t XSession::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection_, false, uint16_t(strlen(name)), name);
    return owned(xcb_intern_atom_reply(connection_, cookie, nullptr))->atom;
}

void XSession::sync() const {
    owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void XSession::startWindowManager() {
    windowManager_ = std::make_unique<Child>(std::vector<std::string>{"openbox", "--config-file", "/dev/null"},
                                             std::vector<std::string>{"DISPLAY=" + display_.toStdString()});
    const xcb_atom_t check = atom("_NET_SUPPORTING_WM_CHECK");
    const auto ready = [&] {
        const auto cookie = xcb_get_property(connection_, false, root_, check, XCB_ATOM_WINDOW, 0, 1);
        return owned(xcb_get_property_reply(connection_, cookie, nullptr))->value_len == 1;
    };
    require(bool(waitFor(ready)), "no window manager");
}

bool XSession::selectionOwned(const char* name) const {
    const auto cookie = xcb_get_selection_owner(connection_, atom(name));
    return owned(xcb_get_selection_owner_reply(connection_, cookie, nullptr))->owner != XCB_NONE;
}

void XSession::startCompositor() {
    compositor_ =
        std::make_unique<Child>(std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
                                std::vector<std::string>{"DISPLAY=" + display_.toStdString()});
    require(bool(waitFor([this] { return selectionOwned("_NET_WM_CM_S0"); })), "no compositor");
}

void XSession::stopCompositor() {
    compositor_.reset();
    require(bool(waitFor([this] { return !selectionOwned("_NET_WM_CM_S0"); })), "the compositor stays");
}

QImage XSession::screenshot(const QRect& area) const {
    const auto cookie = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, int16_t(area.x()),
                                      int16_t(area.y()), uint16_t(area.width()), uint16_t(area.height()), ~0u);
    const auto reply = owned(xcb_get_image_reply(connection_, cookie, nullptr));
    if (!reply) return {};
    return QImage(xcb_get_image_data(reply.get()), area.width(), area.height(), QImage::Format_RGB32).copy();
}

xcb_window_t XSession::activeWindow() const {
    const auto cookie = xcb_get_property(connection_, false, root_, atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    return reply && reply->value_len == 1 ? *static_cast<xcb_window_t*>(xcb_get_property_value(reply.get())) : XCB_NONE;
}

QByteArray XSession::clipboard() const {
    QProcess reader;
    reader.start(QStringLiteral("xclip"),
                 {QStringLiteral("-display"), QString::fromLatin1(display_), QStringLiteral("-selection"),
                  QStringLiteral("clipboard"), QStringLiteral("-o")});
    return reader.waitForFinished(5000) ? reader.readAllStandardOutput() : QByteArray();
}

QList<xcb_window_t> XSession::stacking() const {
    const auto reply = owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
    const xcb_window_t* first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

void XSession::fake(int type, int detail, QPoint place) {
    xcb_test_fake_input(connection_, uint8_t(type), uint8_t(detail), XCB_CURRENT_TIME, root_, int16_t(place.x()),
                        int16_t(place.y()), 0);
    sync();
}

void XSession::moveTo(QPoint place) {
    fake(XCB_MOTION_NOTIFY, 0, place);
}
void XSession::press(int button) {
    fake(XCB_BUTTON_PRESS, button);
}
void XSession::release(int button) {
    fake(XCB_BUTTON_RELEASE, button);
}
void XSession::key(int keycode, bool down) {
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode);
}

void XSession::tapKey(uint32_t keysym, int times) {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const int first = setup->min_keycode, count = setup->max_keycode - first + 1;
    const auto cookie = xcb_get_keyboard_mapping(connection_, uint8_t(first), uint8_t(count));
    const auto mapping = owned(xcb_get_keyboard_mapping_reply(connection_, cookie, nullptr));
    require(mapping != nullptr, "no keyboard mapping");
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    int keycode = 0;
    for (int i = 0; i < count && !keycode; ++i) {
        if (symbols[i * mapping->keysyms_per_keycode] == keysym) keycode = first + i;
    }
    require(keycode != 0, "no key has this symbol");
    for (int i = 0; i < times; ++i) {
        key(keycode, true);
        key(keycode, false);
    }
}

void XSession::click(QPoint place, int button) {
    moveTo(place);
    press(button);
    release(button);
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
    : session_(session), options_(options), connection_(xcb_connect(session.display().constData(), nullptr)) {
    window_ = create(options);
}

OtherWindow::~OtherWindow() {
    xcb_disconnect(connection_);
}

xcb_window_t OtherWindow::create(const Options& options) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const QRect& area = options.geometry;
    const uint32_t values[] = {options.colour, options.overrideRedirect, XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, session_.root(), int16_t(area.x()), int16_t(area.y()),
                      uint16_t(area.width()), uint16_t(area.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    QByteArray wmClass(options.instance);
    wmClass.append('\0').append(options.className).append('\0');
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        uint32_t(wmClass.size()), wmClass.constData());
    if (options.fullScreen) {
        const xcb_atom_t state = session_.atom("_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, session_.atom("_NET_WM_STATE"), XCB_ATOM_ATOM,
                            32, 1, &state);
    }
    xcb_map_window(connection_, window);
    xcb_flush(connection_);
    const auto viewable = [&] {
        const auto cookie = xcb_get_window_attributes(connection_, window);
        const auto reply = owned(xcb_get_window_attributes_reply(connection_, cookie, nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    };
    require(bool(waitFor(viewable)), "a test window stays invisible");
    return window;
}

xcb_window_t OtherWindow::openSecond() {
    return create(options_);
}

void OtherWindow::raise() {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(connection_);
}

void OtherWindow::activate() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window_;
    message.type = session_.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2;
    xcb_send_event(connection_, false, session_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
}

const QList<int>& OtherWindow::presses() {
    while (const auto event = owned(xcb_poll_for_event(connection_))) {
        if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS)
            presses_.append(reinterpret_cast<const xcb_button_press_event_t*>(event.get())->detail);
    }
    return presses_;
}
