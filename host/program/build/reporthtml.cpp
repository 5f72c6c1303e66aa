// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include "build/reportcard.h"
#include "build/reportpicture.h"
#include "build/reportstyle.h"
#include "build/reporttext.h"
#include "console/figures.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>

namespace {

struct Page {
    Q_DECLARE_TR_FUNCTIONS(Report)
};

const auto& text = ReportMarkup::text;

QString head(const QString& title)
{
    // Nothing is fetched, whatever a text might try. The language is that of these texts.
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"%1\">\n<head>\n<meta charset=\"utf-8\">\n"
                          "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                          "img-src data:; style-src 'unsafe-inline'\">\n"
                          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                          "<meta name=\"color-scheme\" content=\"light dark\">\n<title>%2</title>\n"
                          "<style>\n%3</style>\n</head>\n<body>\n")
        .arg(text(Page::tr("en")), text(title), QLatin1String(reportStyle));
}

QString tile(ChannelOutcome::Outcome outcome, int count)
{
    const QString look = ReportMarkup::lookOf(outcome);
    const QString content = QStringLiteral("<dt>%1</dt><dd>%2</dd>")
                                .arg(text(ReportText::outcomeName(outcome)), QLocale().toString(count));
    return QStringLiteral("<div class=\"tile %1\">%2</div>\n").arg(count > 0 ? look : QString(), content);
}

QString fact(const QString& title, const QString& value)
{
    return value.isEmpty() ? QString()
                           : QStringLiteral("<div><dt>%1</dt><dd>%2</dd></div>\n").arg(text(title), value);
}

QString factsOf(const BuildOutcome& build, const ReportSums& sums)
{
    QString facts;
    if (build.start.isValid()) {
        const QDateTime start = build.start.toUTC();
        facts += fact(
            Page::tr("Started"),
            QStringLiteral("<time datetime=\"%1\">%2 UTC</time>")
                .arg(start.toString(Qt::ISODate), start.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))));
    }
    if (build.end.isValid())
        facts +=
            fact(Page::tr("Took"), text(ReportText::stretch(ReportText::duration(build.start, build.end))));
    if (sums.packages > 0)
        facts +=
            fact(Page::tr("Packages"),
                 text(QStringLiteral("%1, %2").arg(QLocale().toString(sums.packages), sizeText(sums.bytes))));
    facts += fact(Page::tr("Signature"), text(ReportText::signing(sums)));
    if (build.slices > 1)
        facts += fact(Page::tr("Slice"), text(Page::tr("%1 of %2").arg(build.slice + 1).arg(build.slices)));
    facts += fact(Page::tr("Job"), ReportMarkup::path(build.job));
    return facts + fact(Page::tr("Output"), ReportMarkup::path(build.output));
}

QString summary(const BuildOutcome& build, const ReportSums& sums)
{
    QString tiles;
    for (const ChannelOutcome::Outcome outcome :
         {ChannelOutcome::Built, ChannelOutcome::Unchanged, ChannelOutcome::Failed})
        tiles += tile(outcome, sums.of(outcome));
    if (sums.of(ChannelOutcome::NotReached) > 0)
        tiles += tile(ChannelOutcome::NotReached, sums.of(ChannelOutcome::NotReached));
    return QStringLiteral("<header>\n<p class=\"kicker\">%1</p>\n<h1><bdi>%2</bdi></h1>\n"
                          "<p class=\"verdict %3\">%4</p>\n<dl class=\"tiles\">\n%5</dl>\n"
                          "<dl class=\"facts\">\n%6</dl>\n</header>\n<main>\n")
        .arg(text(Page::tr("Build report")), text(build.game),
             build.succeeded() ? QStringLiteral("good") : QStringLiteral("bad"),
             text(ReportText::verdict(build, sums)), tiles, factsOf(build, sums));
}

// Where the time of all channels went; at the same time what tells the colours of the others' bars.
QString timeByStep(const ReportSums& sums)
{
    QString entries;
    for (const auto& step : sums.steps) {
        if (step.second == 0)
            continue;
        entries += QStringLiteral("<li><span class=\"swatch %1\"></span>%2 <b>%3</b></li>\n")
                       .arg(ReportMarkup::colourOf(step.first), text(ReportText::stepName(step.first)),
                            text(ReportText::stretch(step.second)));
    }
    if (entries.isEmpty())
        return {};
    return QStringLiteral(
               "<section aria-labelledby=\"time\">\n<h2 id=\"time\">%1</h2>\n%2<ul class=\"legend\">\n%3"
               "</ul>\n</section>\n")
        .arg(text(Page::tr("Time of all channels, by step")), ReportMarkup::bar(sums.steps), entries);
}

// Card by card: those of a large job would fill the memory.
void putGroup(const BuildOutcome& build, const ReportSums& sums, ChannelOutcome::Outcome outcome,
              const BuildReport::Sink& put)
{
    if (sums.of(outcome) == 0)
        return;
    const QString id = QStringLiteral("group-%1").arg(int(outcome));
    put(QStringLiteral(
            "<section aria-labelledby=\"%1\">\n<h2 id=\"%1\">%2 <span class=\"count\">%3</span></h2>\n"
            "<ul class=\"channels\">\n")
            .arg(id, text(ReportText::outcomeName(outcome)), QLocale().toString(sums.of(outcome))));
    for (const ChannelOutcome& channel : build.channels) {
        if (channel.outcome == outcome)
            put(ReportMarkup::card(channel));
    }
    put(QStringLiteral("</ul>\n</section>\n"));
}

// Those of one run; where many slices were collected, the cards show all icons already.
QString sheets(const BuildOutcome& build)
{
    constexpr int mostShown = 4;
    if (build.sheets.isEmpty())
        return {};
    QString pictures;
    for (const QString& path : build.sheets) {
        const ReportPicture picture =
            build.sheets.size() <= mostShown ? ReportPicture::sheet(path) : ReportPicture();
        const QString name = ReportMarkup::path(path);
        pictures += picture.uri.isEmpty()
            ? QStringLiteral("<p>%1</p>\n").arg(name)
            : QStringLiteral("<figure><img alt=\"%1\" width=\"%2\" height=\"%3\" src=\"%4\">"
                             "<figcaption>%5</figcaption></figure>\n")
                  .arg(text(Page::tr("the icons of all channels")))
                  .arg(picture.size.width())
                  .arg(picture.size.height())
                  .arg(QLatin1String(picture.uri), name);
    }
    return QStringLiteral("<section aria-labelledby=\"sheets\">\n<h2 id=\"sheets\">%1</h2>\n%2</section>\n")
        .arg(text(Page::tr("Contact sheets")), pictures);
}

} // namespace

void BuildReport::putHtml(const BuildOutcome& build, const Sink& put)
{
    const ReportSums sums(build);
    put(head(QStringLiteral("%1: %2").arg(build.game, ReportText::verdict(build, sums))));
    put(summary(build, sums));
    putGroup(build, sums, ChannelOutcome::Failed, put);
    putGroup(build, sums, ChannelOutcome::NotReached, put);
    put(timeByStep(sums));
    putGroup(build, sums, ChannelOutcome::Built, put);
    putGroup(build, sums, ChannelOutcome::Unchanged, put);
    put(sheets(build));
    put(QStringLiteral("</main>\n</body>\n</html>\n"));
}

QByteArray BuildReport::toHtml(const BuildOutcome& build)
{
    QByteArray page;
    putHtml(build, [&page](const QString& part) { page += part.toUtf8(); });
    return page;
}
