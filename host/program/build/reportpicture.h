// SPDX-License-Identifier: MIT
#ifndef REPORTPICTURE_H
#define REPORTPICTURE_H

#include <QByteArray>
#include <QSize>
#include <QString>

/** A picture as a page holds it within itself. */
struct ReportPicture {
    QByteArray uri; ///< "data:image/png;base64,…"; empty for what is no picture
    QSize size; ///< in pixels

    /** One of a channel's icons, small enough that hundreds make no large page. */
    static ReportPicture icon(const QString& path);

    /** A contact sheet, as wide as a page shows it. */
    static ReportPicture sheet(const QString& path);
};

#endif
