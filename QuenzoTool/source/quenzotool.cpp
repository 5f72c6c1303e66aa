// SPDX-License-Identifier: MIT
#include "quenzotool.h"

#include "devices/tooloutput.h"
#include "devices/toolprocess.h"
#include "messages.h"

#include <quenzobase.h>

#include <QDateTime>
#include <QFileInfo>

#include <limits>

namespace {

int truncated(double number)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(qBound<double>(Limits::min(), number, Limits::max()));
}

void tellEnd(const QProcess& process, const QString& error)
{
    if (process.exitStatus() == QProcess::CrashExit)
        qCWarning(devicesLog).noquote() << process.program() << "crashed:" << ToolOutput::gist(error);
    else if (process.exitCode() != 0)
        qCWarning(devicesLog).noquote().nospace() << process.program() << " ended with code "
                                                  << process.exitCode() << ": " << ToolOutput::gist(error);
}

// The length in bytes of the text's first `count` characters. What it took to learn it is kept, so that a
// bisection encodes each character about once: `settled` characters take `settledBytes`, whatever follows
// them. A surrogate is not settled, since its bytes depend on its neighbours, and the codec leaves one at the
// end out.
struct Prefix {
    int count = 0;
    int bytes = 0;
    int settled = 0;
    int settledBytes = 0;
};

Prefix lengthened(const QString& text, const Prefix& from, int count)
{
    const auto bytesUpTo = [&](int end) {
        return from.settledBytes + text.midRef(from.settled, end - from.settled).toLocal8Bit().size();
    };
    int settled = count;
    while (settled > from.settled && text.at(settled - 1).isSurrogate())
        --settled;
    const int bytes = bytesUpTo(count);
    return {count, bytes, settled, settled == count ? bytes : bytesUpTo(settled)};
}

} // namespace

QString QuenzoTool::getToolPath()
{
#ifdef Q_OS_WIN
    return QuenzoBase::getRunPath() + QStringLiteral("/../tool/win");
#else
    return QuenzoBase::getRunPath() + QStringLiteral("/../tool/mac");
#endif
}

bool QuenzoTool::runCmdWaitFinish(const QString& command, QString& output, QString& error)
{
    constexpr int timeLimitMs = 30000;
    ToolProcess process(ToolProcess::Own);
    output.clear();
    error.clear();
    if (!process.begin(command))
        return false;
    const bool finished = process.waitForFinished(timeLimitMs);
    const bool timedOut = process.state() != QProcess::NotRunning;
    output = ToolOutput::text(process.readAllStandardOutput());
    error = ToolOutput::text(process.readAllStandardError());
    process.end();
    if (timedOut)
        qCWarning(devicesLog).noquote() << process.program() << "was ended: it took longer than 30 s";
    else if (finished && !process.isOverLimit())
        tellEnd(process, error);
    return finished && !process.isOverLimit();
}

QString QuenzoTool::getCurrentTime(QString format)
{
    return QDateTime::currentDateTime().toString(format);
}

QString QuenzoTool::getDownloadFileName(QString url)
{
    const QString name = QFileInfo(url).fileName();
    return name.left(name.indexOf(QLatin1Char('?')));
}

int QuenzoTool::showLength(QString text)
{
    return text.toLocal8Bit().size();
}

QString QuenzoTool::getStrInMaxCount(QString text, int count, QString suffix)
{
    if (showLength(text) <= count)
        return text;
    const int suffixLength = showLength(suffix);
    if (count <= suffixLength)
        return text;
    const int room = count - suffixLength;

    // Prefix lengths grow with the prefix, so the first one of at least room - 1 bytes decides.
    Prefix below;
    int above = qMin(count, text.size());
    while (above - below.count > 1) {
        const Prefix middle = lengthened(text, below, below.count + (above - below.count) / 2);
        if (middle.bytes < room - 1)
            below = middle;
        else
            above = middle.count;
    }
    const int first = room == 1 ? 0 : above;
    const int bytes = showLength(text.left(first));
    const bool fits = first < count && (bytes == room - 1 || bytes == room);
    return fits ? text.left(first) + suffix : QString();
}

QString QuenzoTool::blankReplace(QString text)
{
    constexpr int untouched = 9;
    constexpr QLatin1Char backslash('\\');
    QString escaped = text.left(untouched);
    escaped.reserve(text.size());
    for (int i = untouched; i < text.size(); ++i) {
        if (text.at(i).isSpace() && text.at(i - 1) != backslash)
            escaped += backslash;
        escaped += text.at(i);
    }
    return escaped;
}

int QuenzoTool::ConvertToInt(QJsonValueRef value)
{
    return value.isString() ? value.toString().toInt() : truncated(value.toDouble(0.0));
}

QString QuenzoTool::ConvertToStr(QJsonValueRef value)
{
    return value.isDouble() ? QString::number(value.toDouble(), 'g', 6) : value.toString();
}

void QuenzoTool::getUrlParam(QString url, QMap<QString, QString>& params)
{
    params.clear();
    const int query = url.indexOf(QLatin1Char('?'));
    if (query < 0)
        return;

    // Values are cut out at the end: those of glued pieces overlap, and a later occurrence may replace them.
    QMap<QString, QStringRef> values;
    int rest = query + 1;
    int equals = url.indexOf(QLatin1Char('='), rest);
    while (equals >= 0) {
        const int ampersand = url.indexOf(QLatin1Char('&'), rest);
        const QString key = url.mid(rest, equals - rest);
        const bool toTheEnd = ampersand < equals;
        values[key] = url.midRef(equals + 1, toTheEnd ? -1 : ampersand - equals - 1);
        if (ampersand < 0)
            break;
        rest = ampersand + 1;
        if (equals < rest)
            equals = url.indexOf(QLatin1Char('='), rest);
    }
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        params.insert(params.cend(), value.key(), value->toString());
}
