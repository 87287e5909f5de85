#include "creature/Numbers.h"

#include <QStringList>
#include <array>
#include <charconv>
#include <cmath>

QString formatNumber(double value) {
    std::array<char, 32> buffer{};
    // Without a format, to_chars would write 100000 as 1e+05, which reads badly in screen coordinates.
    const double size = std::abs(value);
    const auto format =
        size == 0 || (size >= 1e-4 && size < 1e16) ? std::chars_format::fixed : std::chars_format::scientific;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format).ptr;
    QString text = QString::fromLatin1(buffer.data(), end - buffer.data());
    if (!std::isfinite(value) || text.contains(u'.')) return text;
    // The decimal point goes before an exponent.
    const auto exponent = text.indexOf(u'e');
    return text.insert(exponent < 0 ? text.size() : exponent, QStringLiteral(".0"));
}

QString formatNumbers(std::initializer_list<double> values) {
    QStringList parts;
    for (const double value : values) parts.append(formatNumber(value));
    return u'(' + parts.join(QStringLiteral(", ")) + u')';
}
