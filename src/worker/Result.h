#pragma once

#include <QString>
#include <variant>

/// Why a job failed: a code of the domain "chew" and its text, which may be empty.
struct Failure {
    int code = 0;
    QString description;

    friend bool operator==(const Failure&, const Failure&) = default;
};

/// What a job produced, or why it failed.
template <class T>
using Result = std::variant<T, Failure>;

inline Failure cannotOpenImage() {
    return {1, QStringLiteral("couldn't open the image")};
}
