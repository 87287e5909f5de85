#pragma once

#include <QByteArray>

/// An environment variable that has a value of the test's, or with a null one none, for as long as the object lives.
class EnvironmentVariable {
 public:
    EnvironmentVariable(const char* name, const QByteArray& value) : name_(name), before_(qgetenv(name)) { set(value); }
    ~EnvironmentVariable() { set(before_); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
    void set(const QByteArray& value) const { value.isNull() ? qunsetenv(name_) : qputenv(name_, value); }

    const char* name_;
    QByteArray before_;
};
