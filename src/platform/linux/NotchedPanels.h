#pragma once

#include <QSize>
#include <array>

/// Built-in screens with a camera housing at the top, by their resolution in pixels.
struct NotchedPanel {
    QSize resolution;
    QSize housing;  ///< pixels
};

/// So far a single maker sells laptops with such screens, and no other machine has these resolutions.
inline constexpr std::array kNotchedPanels{
    NotchedPanel{QSize(3024, 1964), QSize(370, 64)},  // 14 inch
    NotchedPanel{QSize(3456, 2234), QSize(370, 64)},  // 16 inch
    NotchedPanel{QSize(2560, 1664), QSize(370, 64)},  // 13.6 inch
    NotchedPanel{QSize(2880, 1864), QSize(370, 64)},  // 15.3 inch
};
