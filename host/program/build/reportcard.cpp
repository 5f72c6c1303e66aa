// SPDX-License-Identifier: MIT
#include "build/reportcard.h"

#include "build/reportpicture.h"
#include "build/reporttext.h"
#include "console/figures.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

namespace {

struct Card {
    Q_DECLARE_TR_FUNCTIONS(Report)
};

const auto& text = ReportMarkup::text;

// Looked at without colours, too.
QString signOf(ChannelOutcome::Outcome outcome)
{
    constexpr std::array<ushort, 4> signs{0x2713, 0x003d, 0x2715, 0x2013}; // check mark, =, cross, dash
    return {QChar(signs.at(size_t(outcome)))};
}

QString iconOf(const ChannelOutcome& channel, const QString& path)
{
    constexpr int shownSide = 48;
    const ReportPicture picture = ReportPicture::icon(path);
    if (picture.uri.isEmpty())
        return {};
    const QSize size = picture.size.scaled(shownSide, shownSide, Qt::KeepAspectRatio);
    return QStringLiteral("<img alt=\"%1\" width=\"%2\" height=\"%3\" src=\"%4\">")
        .arg(text(Card::tr("icon of %1").arg(channel.name)), QString::number(size.width()),
             QString::number(size.height()), QLatin1String(picture.uri));
}

QString firstIcon(const ChannelOutcome& channel)
{
    const QString picture = channel.icons.isEmpty() ? QString() : iconOf(channel, channel.icons.first());
    if (!picture.isEmpty())
        return QStringLiteral("<div class=\"icon\">%1</div>\n").arg(picture);
    return QStringLiteral("<div class=\"icon blank\" role=\"img\" aria-label=\"%1\">?</div>\n")
        .arg(text(Card::tr("no icon")));
}

QString furtherIcons(const ChannelOutcome& channel)
{
    constexpr int mostShown = 3;
    QString pictures;
    for (const QString& path : channel.icons.mid(1, mostShown))
        pictures += iconOf(channel, path);
    return pictures.isEmpty() ? QString() : QStringLiteral("<div class=\"icons\">%1</div>\n").arg(pictures);
}

QString fact(const QString& title, const QString& markup)
{
    return QStringLiteral("<div><dt>%1</dt><dd>%2</dd></div>\n").arg(text(title), markup);
}

QString fact(const QString& title, const QString& markup, const QString& below)
{
    return fact(title, QStringLiteral("%1<small>%2</small>").arg(markup, below));
}

QString packageFacts(const ChannelOutcome& channel)
{
    if (channel.package.isEmpty())
        return {};
    const QLocale locale;
    const QString name =
        QStringLiteral("<bdi class=\"code\">%1</bdi>").arg(ReportMarkup::path(channel.packageName));
    const QString version = QStringLiteral("<bdi>%1</bdi>").arg(text(channel.versionName));
    const QString signing = channel.signer.isEmpty() ? Card::tr("unsigned") : Card::tr("signed");
    QString facts = fact(Card::tr("Package"), name, version);
    facts += fact(Card::tr("Size"), text(sizeText(channel.size)), text(signing));
    facts += fact(Card::tr("Entries"), text(Card::tr("%1 replaced").arg(locale.toString(channel.replaced))),
                  text(Card::tr("%1 added").arg(locale.toString(channel.added))));
    return facts
        + fact(Card::tr("From the base"), text(sizeText(channel.takenOver)),
               text(Card::tr("taken over as is")));
}

QString timeFact(const ChannelOutcome& channel)
{
    QVector<QPair<QString, qint64>> steps;
    for (const BuildStep& step : channel.steps)
        steps.append({step.name, ReportText::duration(step.start, step.end)});
    if (steps.isEmpty() || channel.outcome == ChannelOutcome::Unchanged)
        return {}; // nothing was done in this run
    return fact(Card::tr("Time"),
                text(ReportText::stretch(ReportText::duration(channel))) + ReportMarkup::bar(steps));
}

// What the channel says already is not said again.
QString stepRow(const BuildStep& step, const QString& said)
{
    const qint64 ms = ReportText::duration(step.start, step.end);
    return QStringLiteral("<tr%1><th scope=\"row\">%2</th><td>%3</td><td>%4</td><td>%5</td></tr>\n")
        .arg(step.outcome == BuildStep::Failed ? QStringLiteral(" class=\"bad\"") : QString(),
             text(ReportText::stepName(step.name)), text(ReportText::stepOutcomeName(step.outcome)),
             step.outcome == BuildStep::Skipped ? QString() : text(ReportText::stretch(ms)),
             step.message == said ? QString() : text(step.message));
}

QString stepTable(const ChannelOutcome& channel)
{
    if (channel.steps.isEmpty())
        return {};
    QString rows;
    for (const BuildStep& step : channel.steps)
        rows += stepRow(step, channel.message);
    const QString caption = channel.outcome == ChannelOutcome::Unchanged
        ? QStringLiteral("<caption>%1</caption>").arg(text(Card::tr("In the run that built it")))
        : QString();
    const auto column = [](const QString& title) {
        return QStringLiteral("<th scope=\"col\">%1</th>").arg(text(title));
    };
    return QStringLiteral("<table>%1<thead><tr>%2</tr></thead><tbody>\n%3</tbody></table>\n")
        .arg(caption,
             column(Card::tr("Step")) + column(Card::tr("Outcome")) + column(Card::tr("Time"))
                 + column(Card::tr("Message")),
             rows);
}

QString notesOf(const ChannelOutcome& channel)
{
    QString notes;
    for (const QString& note : channel.notes)
        notes += QStringLiteral("<li>%1</li>").arg(text(note));
    return notes.isEmpty() ? QString() : QStringLiteral("<ul class=\"notes\">%1</ul>\n").arg(notes);
}

QString details(const ChannelOutcome& channel)
{
    QString facts;
    const auto add = [&facts](const QString& title, const QString& value) {
        if (!value.isEmpty())
            facts += fact(title, value);
    };
    add(Card::tr("File"), ReportMarkup::path(channel.package));
    add(Card::tr("Certificate, SHA-256"), text(channel.signer));
    add(Card::tr("Digest"), text(channel.digest));
    if (!facts.isEmpty())
        facts = QStringLiteral("<dl class=\"code\">\n%1</dl>\n").arg(facts);
    const QString content = stepTable(channel) + facts + furtherIcons(channel);
    if (content.isEmpty())
        return {};
    return QStringLiteral("<details%1><summary>%2</summary>\n%3</details>\n")
        .arg(channel.outcome == ChannelOutcome::Failed ? QStringLiteral(" open") : QString(),
             text(Card::tr("Details")), content);
}

} // namespace

QString ReportMarkup::text(const QString& text)
{
    return ReportText::shown(text).toHtmlEscaped().replace(QLatin1Char('\''), QLatin1String("&#39;"));
}

QString ReportMarkup::path(const QString& path)
{
    return text(path)
        .replace(QLatin1Char('/'), QLatin1String("/<wbr>"))
        .replace(QLatin1Char('.'), QLatin1String(".<wbr>"));
}

QString ReportMarkup::lookOf(ChannelOutcome::Outcome outcome)
{
    if (outcome == ChannelOutcome::Built)
        return QStringLiteral("good");
    return outcome == ChannelOutcome::Failed ? QStringLiteral("bad") : QStringLiteral("idle");
}

QString ReportMarkup::colourOf(const QString& step)
{
    const QStringList known{QStringLiteral("sdks"),    QStringLiteral("icons"), QStringLiteral("package"),
                            QStringLiteral("encrypt"), QStringLiteral("sign"),  QStringLiteral("check"),
                            QStringLiteral("output"),  QStringLiteral("export")};
    const int number = known.indexOf(step);
    return number < 0 ? QStringLiteral("other") : QStringLiteral("step%1").arg(number);
}

QString ReportMarkup::bar(const QVector<QPair<QString, qint64>>& steps)
{
    QString parts;
    QStringList words;
    for (const auto& step : steps) {
        if (step.second <= 0)
            continue;
        const QString name = ReportText::stepName(step.first);
        const QString time = ReportText::stretch(step.second);
        words.append(QStringLiteral("%1 %2").arg(name, time));
        parts += QStringLiteral("<span class=\"%1\" style=\"flex-grow:%2\"></span>")
                     .arg(colourOf(step.first))
                     .arg(step.second);
    }
    if (parts.isEmpty())
        return {};
    const QString all = text(words.join(QStringLiteral(", ")));
    return QStringLiteral("<div class=\"bar\" role=\"img\" aria-label=\"%1\" title=\"%1\">%2</div>\n")
        .arg(all, parts);
}

QString ReportMarkup::card(const ChannelOutcome& channel)
{
    const QString folder = channel.folder == channel.name
        ? QString()
        : QStringLiteral("<p><bdi>%1</bdi></p>").arg(text(channel.folder));
    const QString who =
        QStringLiteral("<div class=\"who\"><h3><bdi>%1</bdi></h3>%2</div>\n").arg(text(channel.name), folder);
    const QString pill = QStringLiteral("<p class=\"pill\"><span aria-hidden=\"true\">%1</span> %2</p>\n")
                             .arg(signOf(channel.outcome), text(ReportText::outcomeName(channel.outcome)));
    const QString why = channel.message.isEmpty()
        ? QString()
        : QStringLiteral("<p class=\"why\">%1</p>\n").arg(text(channel.message));
    QString facts = packageFacts(channel) + timeFact(channel);
    if (!facts.isEmpty())
        facts = QStringLiteral("<dl>\n%1</dl>\n").arg(facts);
    return QStringLiteral("<li class=\"%1\" id=\"channel-%2\">\n")
               .arg(lookOf(channel.outcome))
               .arg(channel.index)
        + firstIcon(channel) + who + pill + facts + why + notesOf(channel) + details(channel)
        + QStringLiteral("</li>\n");
}
