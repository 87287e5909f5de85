#pragma once

#include <QString>

/// `text` as a line to show: without control characters and what changes the direction of writing, blanks made single,
/// at most 300 UTF-16 units long.
QString plainLine(const QString& text);
