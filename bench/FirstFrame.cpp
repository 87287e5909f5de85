// first_frame X Y PROGRAM [ARGUMENTS...]: starts the program and prints how many milliseconds pass from its exec until
// the screen is black at this pixel, which must be light before. Then ends the program.

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

/// One pixel of the screen, asked for afresh each time.
class Pixel {
 public:
    Pixel(int x, int y) : x_(static_cast<int16_t>(x)), y_(static_cast<int16_t>(y)) {}
    ~Pixel() { xcb_disconnect(connection_); }
    Pixel(const Pixel&) = delete;
    Pixel& operator=(const Pixel&) = delete;

    /// Absent without a display and outside of the screen.
    std::optional<bool> black() const {
        if (xcb_connection_has_error(connection_)) return {};
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        const auto cookie = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root, x_, y_, 1, 1, ~0u);
        const std::unique_ptr<xcb_get_image_reply_t, void (*)(void*)> reply(
            xcb_get_image_reply(connection_, cookie, nullptr), std::free);
        if (!reply || xcb_get_image_data_length(reply.get()) < 3) return {};
        const uint8_t* bytes = xcb_get_image_data(reply.get());
        return bytes[0] < 16 && bytes[1] < 16 && bytes[2] < 16;
    }

 private:
    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    int16_t x_, y_;
};

/// How long it takes until the pixel is black; absent after ten seconds.
std::optional<Milliseconds> timeUntilBlack(const Pixel& pixel, std::chrono::steady_clock::time_point start) {
    for (;;) {
        const Milliseconds passed = std::chrono::steady_clock::now() - start;
        if (pixel.black().value_or(false)) return passed;
        if (passed > std::chrono::seconds(10)) return {};
        // Often enough for the figure, seldom enough to leave the X server to the program.
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: first_frame X Y PROGRAM [ARGUMENTS...]\n");
        return 2;
    }
    const Pixel pixel(std::atoi(argv[1]), std::atoi(argv[2]));
    if (pixel.black().value_or(true)) {
        std::fprintf(stderr, "first_frame: there is no display, or its pixel is black already\n");
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execv(argv[3], argv + 3);
        _exit(127);
    }
    const auto time = timeUntilBlack(pixel, start);
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    if (!time) {
        std::fprintf(stderr, "first_frame: nothing showed\n");
        return 1;
    }
    std::printf("%.0f\n", time->count());
}
