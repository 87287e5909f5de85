#pragma once

#include <vector>

#include "platform/linux/x11/X11Connection.h"

/// A form in which X11 programs offer what they drag, and which we can use.
struct DragForm {
    enum class Kind { link, promise, text, image };
    const char* target;  ///< the name that it goes by in X11
    Kind kind;
};

/// Those forms among `targets` that we can use, in the order of `targets`.
std::vector<DragForm> usableForms(X11Connection& connection, const std::vector<xcb_atom_t>& targets);
