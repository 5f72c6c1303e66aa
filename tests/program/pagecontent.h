// SPDX-License-Identifier: MIT
#ifndef PAGECONTENT_H
#define PAGECONTENT_H

#include <QPair>
#include <QStringList>
#include <QVector>

/** What a page is made of, told by a reader of XML: void elements are closed for it, and attributes without a
 * value get one. */
struct PageContent {
    QString fault; ///< empty when the markup is whole
    QStringList elements;
    QVector<QPair<QString, QString>> attributes;
    QString text; ///< outside of the style
    QString style;

    static PageContent of(const QByteArray& page);

    QStringList valuesOf(const QString& attribute) const;
};

#endif
