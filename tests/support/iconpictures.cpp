// SPDX-License-Identifier: MIT
#include "iconpictures.h"

#include <QBuffer>
#include <QPainter>
#include <QProcess>
#include <QtEndian>

#include <cmath>

QImage IconPictures::photograph(int width, int height, bool alpha)
{
    QImage picture(width, height, alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    quint32 state = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            state = state * 1664525U + 1013904223U;
            const double u = double(x) / width;
            const double v = double(y) / height;
            const double edge = std::hypot(u - 0.4, v - 0.6) < 0.25 ? 50 : 0;
            const double light =
                120 + 60 * std::sin(5 * u + 3 * std::sin(4 * v)) + edge + (state >> 24) / 28.0;
            const auto level = [light](double shift) { return qBound(0, int(light + shift), 255); };
            const int cover = alpha ? qBound(0, int(600 - 900 * std::hypot(u - 0.5, v - 0.5)), 255) : 255;
            picture.setPixel(x, y, qRgba(level(30 * u), level(-20 * v), level(25 * v - 40 * u), cover));
        }
    }
    return picture;
}

QImage IconPictures::mark(int side, const QColor& colour)
{
    QImage picture(side, side, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(colour);
    painter.drawEllipse(2, 2, side - 4, side - 4);
    return picture;
}

QImage IconPictures::marked(QImage icon, const QImage& mark, int x, int y)
{
    if (icon.colorCount() > 0)
        icon = icon.convertToFormat(icon.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    QPainter painter(&icon);
    painter.drawImage(x, -y, mark);
    painter.end();
    return icon;
}

QByteArray IconPictures::savedByQt(const QImage& image, int quality)
{
    QByteArray content;
    QBuffer buffer(&content);
    return image.save(&buffer, "PNG", quality) ? content : QByteArray();
}

QList<QPair<QByteArray, QByteArray>> IconPictures::chunksBesideData(const QByteArray& png)
{
    QList<QPair<QByteArray, QByteArray>> chunks;
    for (int at = 8; at + 12 <= png.size();) {
        const auto size = static_cast<int>(qFromBigEndian<quint32>(png.constData() + at));
        const QByteArray type = png.mid(at + 4, 4);
        if (type != "IDAT")
            chunks.append({type, png.mid(at + 8, size)});
        at += size + 12;
    }
    return chunks;
}

QString IconPictures::faultsOf(const QStringList& paths)
{
    QProcess pngcheck;
    pngcheck.setProcessChannelMode(QProcess::MergedChannels);
    pngcheck.start(QStringLiteral(PNGCHECK), QStringList(QStringLiteral("-q")) + paths);
    if (!pngcheck.waitForFinished() || pngcheck.exitStatus() != QProcess::NormalExit)
        return QStringLiteral("pngcheck did not run: ") + pngcheck.errorString();
    const QString output = QString::fromLocal8Bit(pngcheck.readAll());
    return pngcheck.exitCode() == 0 ? QString() : output + QStringLiteral("(exit code not 0)");
}
