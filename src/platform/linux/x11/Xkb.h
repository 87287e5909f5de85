#pragma once

// The header has a field named `explicit`, which is a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
