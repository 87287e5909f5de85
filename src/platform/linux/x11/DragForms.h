#pragma once

#include <vector>

#include "platform/linux/x11/X11Connection.h"

/// A form of a drag's data in X11 that we can use.
struct DragForm {
    enum class Kind { link, promise, text, image, contents };
    const char* target;  ///< its name in X11
    Kind kind;
};

/// The X11 targets for text, from the best-defined encoding to the most ambiguous one.
constexpr const char* kTextTargets[] = {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "STRING", "TEXT"};
/// A file that the source offers to write where we say (XDS).
constexpr const char* kPromiseTarget = "XdndDirectSave0";

/// How many of a program's targets are examined; browsers offer about thirty.
constexpr uint32_t kMaxTargets = 256;

/// The usable forms among the first `kMaxTargets` of `targets`, in their order.
std::vector<DragForm> usableForms(X11Connection& connection, const std::vector<xcb_atom_t>& targets);
