#pragma once

#include <QRectF>
#include <QString>
#include <QStringList>

/// Writes lines to standard error, as UTF-8. Any thread; each line is written in one piece.
class Diagnostics {
 public:
    /// `arguments` are those of the process, with its name.
    explicit Diagnostics(const QStringList& arguments) : tracing_(arguments.contains(QStringLiteral("--trace"))) {}

    /// Writes "glimmet: " and `line`.
    void log(const QString& line) const { write(QStringLiteral("glimmet: ") + line); }
    /// Writes "trace: " and `line` if tracing was requested.
    void trace(const QString& line) const {
        if (tracing_) write(QStringLiteral("trace: ") + line);
    }
    /// Writes `line` and a line end.
    static void write(const QString& line);

 private:
    bool tracing_;
};

/// x, y, width and height in parentheses.
QString formatRect(const QRectF& rect);
