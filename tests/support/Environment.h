#pragma once

#include <QByteArray>
#include <optional>

/// An environment variable that has a value of the test's, or with a null one none, for as long as the object lives.
class EnvironmentVariable {
 public:
    EnvironmentVariable(const char* name, const QByteArray& value) : name_(name) {
        if (qEnvironmentVariableIsSet(name)) before_ = qgetenv(name);
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }
    ~EnvironmentVariable() {
        if (before_)
            qputenv(name_, *before_);
        else
            qunsetenv(name_);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
    const char* name_;
    std::optional<QByteArray> before_;
};
