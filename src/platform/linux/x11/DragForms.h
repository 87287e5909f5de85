#pragma once

#include <vector>

#include "platform/linux/x11/X11Connection.h"

/// A form in which X11 programs offer what they drag, and which we can use.
struct DragForm {
    enum class Kind { link, promise, text, image, contents };
    const char* target;  ///< the name that it goes by in X11
    Kind kind;
};

/// The text in the forms that X11 programs give it, from the one whose meaning is surest to that whose is least sure.
constexpr const char* kTextTargets[] = {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "STRING", "TEXT"};
/// A file that its source offers to write where we say (XDS).
constexpr const char* kPromiseTarget = "XdndDirectSave0";

/// How many of the targets that a program offers are looked at; the longest lists of browsers have some thirty.
constexpr uint32_t kMaxTargets = 256;

/// Those forms among the first `kMaxTargets` of `targets` that we can use, in the order of `targets`.
std::vector<DragForm> usableForms(X11Connection& connection, const std::vector<xcb_atom_t>& targets);
