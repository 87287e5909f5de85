#include "platform/linux/x11/DragForms.h"

#include <algorithm>

namespace {
using Kind = DragForm::Kind;

constexpr DragForm forms[] = {
    {"text/uri-list", Kind::link}, {"text/x-moz-url", Kind::link},
    {"_NETSCAPE_URL", Kind::link}, {"XdndDirectSave0", Kind::promise},
    {"UTF8_STRING", Kind::text},   {"text/plain;charset=utf-8", Kind::text},
    {"text/plain", Kind::text},    {"STRING", Kind::text},
    {"TEXT", Kind::text},          {"image/png", Kind::image},
    {"image/jpeg", Kind::image},   {"image/tiff", Kind::image},
    {"image/heic", Kind::image},   {"application/octet-stream", Kind::contents},
};
}  // namespace

std::vector<DragForm> usableForms(X11Connection& connection, const std::vector<xcb_atom_t>& targets) {
    std::vector<DragForm> result;
    for (size_t i = 0; i < std::min<size_t>(targets.size(), kMaxTargets); ++i) {
        const xcb_atom_t target = targets[i];
        const auto* form = std::find_if(std::begin(forms), std::end(forms), [&](const DragForm& one) {
            return target && connection.atom(one.target) == target;
        });
        if (form != std::end(forms)) result.push_back(*form);
    }
    return result;
}
