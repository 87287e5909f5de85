#include "platform/linux/x11/DragForms.h"

#include <algorithm>

#include "platform/DropTypes.h"

namespace {
using Kind = DragForm::Kind;

std::vector<DragForm> allForms() {
    std::vector<DragForm> forms{{kPromiseTarget, Kind::promise}, {DropTypes::kPromisedBytes.data(), Kind::contents}};
    for (const auto address : DropTypes::kAddresses) forms.push_back({address.data(), Kind::link});
    for (const auto& image : DropTypes::kImages) forms.push_back({image.type.data(), Kind::image});
    for (const char* target : kTextTargets) forms.push_back({target, Kind::text});
    return forms;
}
}  // namespace

std::vector<DragForm> usableForms(X11Connection& connection, const std::vector<xcb_atom_t>& targets) {
    static const std::vector<DragForm> forms = allForms();
    std::vector<DragForm> result;
    for (size_t i = 0; i < std::min<size_t>(targets.size(), kMaxTargets); ++i) {
        const xcb_atom_t target = targets[i];
        const auto form = std::ranges::find_if(
            forms, [&](const DragForm& one) { return target && connection.atom(one.target) == target; });
        if (form != forms.end()) result.push_back(*form);
    }
    return result;
}
