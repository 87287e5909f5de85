#pragma once

#include <QString>
#include <optional>

/// What a music site is playing, from the title of its tab; absent if the title is not a known music site's.
std::optional<QString> trackInTabTitle(const QString& title);
