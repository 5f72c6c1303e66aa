// SPDX-License-Identifier: MIT
#include "devices/tooloutput.h"

namespace {

// Where "Success" stands at or behind the first line break; at the very end of a text without one.
bool tellsSuccess(const QString& output, int lineBreak)
{
    const QString word = QStringLiteral("Success");
    return lineBreak < 0 ? output.endsWith(word) : QStringView(output).mid(lineBreak).contains(word);
}

} // namespace

QString ToolOutput::text(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

QString ToolOutput::gist(const QString& output)
{
    constexpr int longest = 300;
    constexpr int looksAt = 10 * longest;
    const QString line = output.left(looksAt).simplified();
    if (line.isEmpty())
        return QStringLiteral("it said nothing");
    return line.size() > longest ? line.left(longest) + QStringLiteral("...") : line;
}

QStringList ToolOutput::readySerials(QString output)
{
    output.remove(QStringLiteral("List of devices attached"));
    // The first part held the heading.
    const QStringList parts = output.split(QLatin1Char('\n')).mid(1);
    QStringList serials;
    for (const QString& part : parts) {
        // A serial may hold the word itself; the state is the last column.
        const int state = part.lastIndexOf(QLatin1String("device"));
        if (state > 1)
            serials.append(part.left(state - 1));
    }
    return serials;
}

QString ToolOutput::packageName(const QString& output)
{
    const QString mark = QStringLiteral("package: name");
    const int found = output.indexOf(mark);
    if (found < 0)
        return {};
    // Behind the mark stand "=" and the opening quotation mark. Without a closing one the rest is the name.
    const int start = found + mark.size() + 2;
    const int end = output.indexOf(QLatin1Char('\''), start);
    return output.mid(start, end < 0 ? -1 : end - start);
}

ToolOutput::InstallOutcome ToolOutput::installOutcome(const QString& output, bool crashed)
{
    const int lineBreak = output.indexOf(QLatin1Char('\n'));
    if (!crashed && tellsSuccess(output, lineBreak))
        return {InstallOutcome::Installed, {}};

    const int open = lineBreak < 0 ? -1 : output.indexOf(QLatin1Char('['), lineBreak);
    const int close = open < 0 ? -1 : output.indexOf(QLatin1Char(']'), open);
    if (close < 0)
        return {InstallOutcome::Unclear, {}};
    return {InstallOutcome::Refused, output.mid(open + 1, close - open - 1)};
}

bool ToolOutput::uninstallFailed(const QString& output)
{
    return output.contains(QLatin1String("Failure"));
}
