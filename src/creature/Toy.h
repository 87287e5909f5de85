#pragma once

#include <QString>
#include <array>

/// What the notch shows.
enum class Toy { critter, weather };

inline constexpr std::array allToys{Toy::critter, Toy::weather};

/// The name in menus and in the start-up line.
inline QString rawValue(Toy toy) {
    return toy == Toy::critter ? QStringLiteral("Critter") : QStringLiteral("Weather");
}
