#pragma once

#include <QString>
#include <initializer_list>

/// The shortest decimal form that reads back as the same number, always with a decimal point: 1512 is "1512.0".
QString formatNumber(double value);

/// Several numbers in parentheses: "(1.0, 2.5)".
QString formatNumbers(std::initializer_list<double> values);

inline QString formatBool(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}
