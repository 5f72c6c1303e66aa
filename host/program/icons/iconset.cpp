// SPDX-License-Identifier: MIT
#include "icons/iconset.h"

QStringList IconSet::cornerNames()
{
    return {QStringLiteral("left-top"), QStringLiteral("left-bottom"), QStringLiteral("right-top"),
            QStringLiteral("right-bottom"), QStringLiteral("default")};
}

bool IconSet::isRight(int corner)
{
    return corner == RightTop || corner == RightBottom;
}

bool IconSet::isBottom(int corner)
{
    return corner == LeftBottom || corner == RightBottom;
}

QString IconSet::cornerFile(int corner)
{
    return QLatin1String("icon/") + cornerNames().at(qMin<int>(corner, RightBottom)) + QLatin1String(".png");
}

QString IconSet::fileName(int platform, int side)
{
    return platform == Android ? QStringLiteral("icon%1x%1.png").arg(side)
                               : QStringLiteral("Icon-%1.png").arg(side);
}

QString IconSet::wholeFile()
{
    return QStringLiteral("icon512x512.png");
}

QVector<int> IconSet::sides(int platform)
{
    if (platform == Android)
        return {36, 48, 72, 96, 144, 192};
    return {29, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180};
}

QStringList IconSet::fileNames(int platform)
{
    QStringList names;
    for (const int side : sides(platform))
        names.append(fileName(platform, side));
    names.append(wholeFile());
    return names;
}
