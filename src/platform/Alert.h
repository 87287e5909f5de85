#pragma once

#include <QString>
#include <QStringList>
#include <functional>

/// A message that wants an answer.
struct Alert {
    QString message, informative;
    QStringList buttons;  ///< the first is the default one, the last one also stands for closing the alert
    /// Called with the index of the chosen button.
    std::function<void(int)> answered;
};
