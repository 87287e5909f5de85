#pragma once

#include <QUrl>
#include <variant>

#include "creature/Bite.h"
#include "creature/HeldTimer.h"

/// One thing on the shelf: a file, a link or note, or a countdown.
using HeldThing = std::variant<QUrl, Bite, HeldTimer>;
