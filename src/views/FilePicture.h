#pragma once

#include <QImage>
#include <QString>

/// The picture of a file on its chip: 30 points wide and high, on its shadow.
struct FilePicture {
    static constexpr double side = 30;   ///< points of the picture itself
    static constexpr double margin = 4;  ///< points around it, for the shadow

    /// `icon` as the desktop shows the file, or, where it has none, a drawn sheet with `extension` on it.
    static QImage make(const QImage& icon, const QString& extension);
};
