// SPDX-License-Identifier: MIT
#include "window/channels/jobdocument.h"

#include "build/jobchannels.h"
#include "icons/channellist.h"
#include "icons/iconset.h"
#include "window/background.h"
#include "window/channels/jobedits.h"

#include <QPointer>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {

const QString folderKey = QStringLiteral("folder");
const QString nameKey = QStringLiteral("name");
const QString numberKey = QStringLiteral("number");
const QString packageKey = QStringLiteral("package");
const QString markKey = QStringLiteral("mark");
const QString cornerKey = QStringLiteral("corner");
const QString xKey = QStringLiteral("x");
const QString yKey = QStringLiteral("y");
const QString sdksKey = QStringLiteral("sdks");
const QString filesKey = QStringLiteral("files");
const QString encryptKey = QStringLiteral("encrypt");
const QString channelsKey = QStringLiteral("channels");
const QString defaultsKey = QStringLiteral("defaults");

// The keys of a channel in their usual order: a new one comes behind those that stand before it here.
QStringList keysBefore(const QString& key)
{
    static const QStringList order{QStringLiteral("//"),
                                   folderKey,
                                   nameKey,
                                   numberKey,
                                   packageKey,
                                   markKey,
                                   cornerKey,
                                   xKey,
                                   yKey,
                                   sdksKey,
                                   filesKey};
    return order.mid(0, qMax(order.indexOf(key), 0) + (order.contains(key) ? 0 : order.size()));
}

QJsonValue plainValue(const OrderedJson& value)
{
    if (value.kind() == OrderedJson::Number)
        return value.written().toDouble();
    return value.kind() == OrderedJson::Text ? QJsonValue(value.toText()) : QJsonValue();
}

std::optional<int> pixelsOf(const OrderedJson& value)
{
    return ChannelList::wholeNumber(plainValue(value));
}

// Default where the object names none.
int cornerOf(const OrderedJson& object)
{
    const int corner = ChannelList::cornerOf(plainValue(object.member(cornerKey)));
    return corner < 0 ? IconSet::Default : corner;
}

void setText(OrderedJson& channel, const QString& key, const QString& text)
{
    if (text.isEmpty())
        channel.remove(key);
    else if (channel.member(key).toText() != text)
        channel.set(key, OrderedJson::text(text), keysBefore(key));
}

void setPixels(OrderedJson& channel, const QString& key, const std::optional<int>& pixels)
{
    if (!pixels)
        channel.remove(key);
    else if (pixelsOf(channel.member(key)) != pixels)
        channel.set(key, OrderedJson::number(*pixels), keysBefore(key));
}

// A folder that is not among the taken ones, which it joins.
QString unlike(const QString& folder, QSet<QString>& taken)
{
    QString found = folder;
    for (int i = 2; taken.contains(JobChannels::folded(found)); ++i)
        found = folder + QLatin1Char('-') + QString::number(i);
    taken.insert(JobChannels::folded(found));
    return found;
}

// Lengths of the runs of consecutive rows, by their first one.
QVector<QPair<int, int>> runsOf(const QVector<int>& rows)
{
    QVector<QPair<int, int>> runs;
    for (const int row : rows) {
        if (!runs.isEmpty() && runs.last().first + runs.last().second == row)
            ++runs.last().second;
        else
            runs.append({row, 1});
    }
    return runs;
}

QVector<int> sorted(QVector<int> rows)
{
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace

QPoint MarkPlace::cornerIn(const QSize& icon, const QSize& mark) const
{
    const int left = IconSet::isRight(corner) ? icon.width() - mark.width() : 0;
    const int top = IconSet::isBottom(corner) ? icon.height() - mark.height() : 0;
    return {x.value_or(left), y ? -*y : top};
}

JobDocument::JobDocument(QObject* parent)
    : QObject(parent)
{
}

JobDocument::~JobDocument() = default;

bool JobDocument::open(const QString& path, QString& fault)
{
    const JobContent job = JobContent::read(path);
    fault = job.fault;
    if (fault.isEmpty())
        open(job);
    return fault.isEmpty();
}

void JobDocument::open(const JobContent& job)
{
    close();
    m_path = job.path;
    m_digest = job.digest;
    m_root = job.root;
    m_defaults = m_root.member(defaultsKey);
    m_list = m_root.indexOf(channelsKey);
    ++m_revision;
    Q_EMIT opened();
}

void JobDocument::close()
{
    if (!isOpen())
        return;
    m_path.clear();
    m_root = m_defaults = OrderedJson();
    m_list = -1;
    ++m_revision;
    m_undoStack.clear();
    Q_EMIT closed();
}

void JobDocument::save(QObject* receiver, const Ended& ended)
{
    const QPointer<QObject> guarded(receiver);
    whenSaved([this, guarded, ended] { write({}, guarded, ended); });
}

void JobDocument::saveAs(const QString& path, QObject* receiver, const Ended& ended)
{
    const QPointer<QObject> guarded(receiver);
    whenSaved([this, path, guarded, ended] { write(path, guarded, ended); });
}

void JobDocument::whenSaved(const std::function<void()>& then)
{
    if (m_isSaving)
        m_waiting.append(then);
    else
        then();
}

// To its own path when none is given.
void JobDocument::write(const QString& path, QObject* receiver, const Ended& ended)
{
    m_isSaving = true;
    const JobContent job = contentNow();
    inBackground(
        this, [job, path] { return (path.isEmpty() ? job : job.movedTo(path)).written(); },
        [this, revision = m_revision, guarded = QPointer<QObject>(receiver), ended](const JobContent& done) {
            m_isSaving = false;
            if (done.fault.isEmpty() && isOpen())
                settle(done, revision);
            if (guarded)
                ended(done.fault);
            for (const auto& then : std::exchange(m_waiting, {}))
                whenSaved(then);
        });
}

// There may have been edits meanwhile: then the file is none of the states that can be returned to.
void JobDocument::settle(const JobContent& written, int revision)
{
    const bool isAsWritten = revision == m_revision;
    const bool isMoved = written.path != m_path;
    m_root = isAsWritten ? written.root : contentNow().movedTo(written.path).root;
    m_defaults = m_root.member(defaultsKey);
    m_path = written.path;
    m_digest = written.digest;
    if (isAsWritten)
        m_undoStack.setClean();
    else
        m_undoStack.resetClean();
    if (isMoved)
        Q_EMIT savedAs(m_path);
}

JobContent JobDocument::contentNow() const
{
    JobContent job;
    job.path = m_path;
    job.root = m_root;
    job.digest = m_digest;
    return job;
}

QByteArray JobDocument::content() const
{
    return m_root.toUtf8();
}

// Joined by hand, as a run does it: Qt takes a leading colon for the name of a built-in resource.
QString JobDocument::absolute(const QString& path) const
{
    if (path.isEmpty() || path.startsWith(QLatin1Char('/')))
        return path;
    return folder() + QLatin1Char('/') + path;
}

QString JobDocument::folder() const
{
    return m_path.left(m_path.lastIndexOf(QLatin1Char('/')));
}

QString JobDocument::game() const
{
    return m_root.member(QStringLiteral("game")).toText();
}

QString JobDocument::masterPath() const
{
    return absolute(m_root.member(QStringLiteral("icons")).member(QStringLiteral("master")).toText());
}

QString JobDocument::marksPath() const
{
    return absolute(m_root.member(QStringLiteral("icons")).member(QStringLiteral("marks")).toText());
}

QString JobDocument::outputPath() const
{
    const QString output = QStringLiteral("output");
    return absolute(m_root.indexOf(output) < 0 ? output : m_root.member(output).toText());
}

QStringList JobDocument::sdkNames() const
{
    QStringList names;
    for (const OrderedJson::Item& sdk : m_root.member(QStringLiteral("sdks")).items()) {
        if (sdk.key != QLatin1String("//"))
            names.append(sdk.key);
    }
    return names;
}

const JobDocument::Items& JobDocument::channels() const
{
    static const Items none;
    return m_list < 0 ? none : m_root.items().at(m_list).value.items();
}

JobDocument::Items& JobDocument::channels()
{
    return m_root.items()[m_list].value.items();
}

int JobDocument::channelCount() const
{
    return channels().size();
}

const OrderedJson& JobDocument::channel(int row) const
{
    return channels().at(row).value;
}

OrderedJson JobDocument::valueOf(int row, const QString& key) const
{
    return channel(row).indexOf(key) < 0 ? m_defaults.member(key) : channel(row).member(key);
}

QString JobDocument::folderOf(int row) const
{
    return channel(row).member(folderKey).toText();
}

QString JobDocument::nameOf(int row) const
{
    const QString name = channel(row).member(nameKey).toText();
    return name.isEmpty() ? folderOf(row) : name;
}

QString JobDocument::numberOf(int row) const
{
    const OrderedJson number = channel(row).member(numberKey);
    return number.kind() == OrderedJson::Number ? QString::fromLatin1(number.written()) : number.toText();
}

QString JobDocument::packageOf(int row) const
{
    return channel(row).member(packageKey).toText();
}

QStringList JobDocument::sdksOf(int row) const
{
    return valueOf(row, sdksKey).toTexts();
}

QString JobDocument::filesOf(int row) const
{
    return valueOf(row, filesKey).toText();
}

bool JobDocument::isEncrypted(int row) const
{
    return valueOf(row, encryptKey).isTrue();
}

QString JobDocument::markOf(int row) const
{
    const QString mark = valueOf(row, markKey).toText();
    return mark == QLatin1String("None") ? QString() : mark;
}

bool JobDocument::hasOwnPlace(int row) const
{
    const OrderedJson& own = channel(row);
    return cornerOf(own) != IconSet::Default || own.indexOf(xKey) >= 0 || own.indexOf(yKey) >= 0;
}

// A position belongs to its corner: a channel with a corner of its own takes none from the defaults.
MarkPlace JobDocument::placeOf(int row) const
{
    const int own = cornerOf(channel(row));
    const bool isOwn = own != IconSet::Default;
    const int corner = isOwn ? own : cornerOf(m_defaults);
    MarkPlace place;
    place.corner = corner == IconSet::Default ? int(IconSet::RightBottom) : corner;
    place.x = pixelsOf(isOwn ? channel(row).member(xKey) : valueOf(row, xKey));
    place.y = pixelsOf(isOwn ? channel(row).member(yKey) : valueOf(row, yKey));
    return place;
}

QString JobDocument::objectionToFolder(int row, const QString& folder) const
{
    const QString fault = ChannelList::faultOfName(folder);
    if (!fault.isEmpty())
        return tr("The name of the folder %1.").arg(fault);
    if (JobChannels::isReserved(folder))
        return tr("The run itself needs the name %1. Choose another folder.").arg(folder);
    const QString folded = JobChannels::folded(folder);
    for (int other = 0; other < channelCount(); ++other) {
        if (other != row && JobChannels::folded(folderOf(other)) == folded)
            return tr("%1 has the folder %2 already. Choose another one.")
                .arg(nameOf(other), folderOf(other));
    }
    return {};
}

QString JobDocument::objectionToNumber(const QString& number) const
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9]{0,9}\\z"));
    return form.match(number).hasMatch()
        ? QString()
        : tr("%1 is no number of a developer record, which has up to nine digits.").arg(number);
}

QString JobDocument::objectionToPackage(const QString& package) const
{
    static const QRegularExpression form(
        QStringLiteral("\\A[A-Za-z][A-Za-z0-9_]*(\\.[A-Za-z][A-Za-z0-9_]*)+\\z"));
    return package.isEmpty() || form.match(package).hasMatch()
        ? QString()
        : tr("%1 is no name of an Android package, like com.example.game.").arg(package);
}

QString JobDocument::objectionToSdks(const QStringList& sdks) const
{
    const QStringList known = sdkNames();
    for (const QString& sdk : sdks) {
        if (!known.contains(sdk))
            return known.isEmpty()
                ? tr("The job has no SDKs, so that no channel can have %1.").arg(sdk)
                : tr("%1 is no SDK of this job. It has %2.").arg(sdk, known.join(QStringLiteral(", ")));
    }
    return {};
}

void JobDocument::setFolder(int row, const QString& folder)
{
    change(tr("Folder %1").arg(folder), {row}, Whole,
           [&folder](int, OrderedJson& channel) { setText(channel, folderKey, folder); });
}

void JobDocument::setName(int row, const QString& name)
{
    change(tr("Name %1").arg(name), {row}, Whole, [this, &name](int changed, OrderedJson& channel) {
        setText(channel, nameKey, name == folderOf(changed) ? QString() : name);
    });
}

// A number, unless the job has a text there, or its zeros would go.
void JobDocument::setNumber(int row, const QString& number)
{
    change(tr("Number of %1").arg(nameOf(row)), {row}, Whole,
           [this, &number](int changed, OrderedJson& channel) {
               if (numberOf(changed) == number)
                   return;
               const OrderedJson plain = OrderedJson::number(number.toInt());
               const bool isText = channel.member(numberKey).kind() == OrderedJson::Text
                   || plain.written() != number.toLatin1();
               if (number.isEmpty())
                   channel.remove(numberKey);
               else
                   channel.set(numberKey, isText ? OrderedJson::text(number) : plain, keysBefore(numberKey));
           });
}

void JobDocument::setFiles(int row, const QString& path)
{
    const bool isDefault = !m_defaults.member(filesKey).toText().isEmpty();
    change(tr("Files of %1").arg(nameOf(row)), {row}, Whole,
           [this, &path, isDefault](int changed, OrderedJson& channel) {
               if (filesOf(changed) == path)
                   return;
               if (path.isEmpty() && isDefault)
                   channel.set(filesKey, OrderedJson::null(), keysBefore(filesKey));
               else
                   setText(channel, filesKey, path);
           });
}

void JobDocument::setEncrypted(const QVector<int>& rows, bool isEncrypted)
{
    const bool isDefault = m_defaults.member(encryptKey).isTrue() == isEncrypted;
    change(tr("Encryption of %1").arg(titleOf(rows)), rows, Whole,
           [this, isEncrypted, isDefault](int row, OrderedJson& channel) {
               if (this->isEncrypted(row) == isEncrypted)
                   return;
               if (isDefault)
                   channel.remove(encryptKey);
               else
                   channel.set(encryptKey, OrderedJson::flag(isEncrypted), keysBefore(encryptKey));
           });
}

void JobDocument::setPackage(int row, const QString& package)
{
    change(tr("Package name of %1").arg(nameOf(row)), {row}, Whole,
           [&package](int, OrderedJson& channel) { setText(channel, packageKey, package); });
}

void JobDocument::setSdks(const QVector<int>& rows, const QStringList& sdks)
{
    change(tr("SDKs of %1").arg(titleOf(rows)), rows, Whole, [this, &sdks](int row, OrderedJson& channel) {
        if (sdksOf(row) != sdks)
            channel.set(sdksKey, OrderedJson::texts(sdks), keysBefore(sdksKey));
    });
}

void JobDocument::setMark(const QVector<int>& rows, const QString& mark)
{
    const bool isDefault = !m_defaults.member(markKey).toText().isEmpty();
    const QStringList before = keysBefore(markKey);
    const OrderedJson value = mark.isEmpty() && isDefault ? OrderedJson::null() : OrderedJson::text(mark);
    change(tr("Mark of %1").arg(titleOf(rows)), rows, Whole, [&](int row, OrderedJson& channel) {
        if (markOf(row) == mark)
            return;
        if (mark.isEmpty() && !isDefault)
            channel.remove(markKey);
        else
            channel.set(markKey, value, before);
    });
}

void JobDocument::setPlace(const QVector<int>& rows, const MarkPlace& place, Step step)
{
    const OrderedJson corner = OrderedJson::text(IconSet::cornerNames().at(place.corner));
    const QStringList before = keysBefore(cornerKey);
    change(tr("Place of the mark of %1").arg(titleOf(rows)), rows, step, [&](int row, OrderedJson& channel) {
        if (placeOf(row) == place)
            return;
        if (cornerOf(channel) != place.corner)
            channel.set(cornerKey, corner, before);
        setPixels(channel, xKey, place.x);
        setPixels(channel, yKey, place.y);
    });
}

void JobDocument::removePlace(const QVector<int>& rows)
{
    change(tr("Place of the mark of %1").arg(titleOf(rows)), rows, Whole, [](int, OrderedJson& channel) {
        for (const QString& key : {cornerKey, xKey, yKey})
            channel.remove(key);
    });
}

QString JobDocument::titleOf(const QVector<int>& rows) const
{
    return rows.size() == 1 ? nameOf(rows.first()) : tr("%1 channels").arg(rows.size());
}

// Pushes what really changes; nothing when nothing does.
void JobDocument::change(const QString& text, const QVector<int>& rows, Step step,
                         const std::function<void(int row, OrderedJson& channel)>& edit)
{
    QVector<Change::Entry> entries;
    entries.reserve(rows.size());
    for (const int row : rows) {
        Change::Entry entry{row, channel(row), channel(row)};
        edit(row, entry.after);
        if (!entry.after.isCopyOf(entry.before))
            entries.append(entry);
    }
    if (!entries.isEmpty())
        m_undoStack.push(new Change(*this, text, entries, step));
}

OrderedJson JobDocument::newChannel(const OrderedJson& like, QString folder) const
{
    OrderedJson made = like.kind() == OrderedJson::Object ? like.emptied() : OrderedJson::object();
    made.set(folderKey, OrderedJson::text(folder));
    return made;
}

int JobDocument::addChannel(int row)
{
    QSet<QString> taken;
    for (int i = 0; i < channelCount(); ++i)
        taken.insert(JobChannels::folded(folderOf(i)));
    const int place = qBound(0, row, channelCount());
    OrderedJson::Item item;
    item.value = newChannel(channelCount() > 0 ? channel(qMax(place - 1, 0)) : OrderedJson(),
                            unlike(QStringLiteral("channel"), taken));
    arrange(tr("Add a channel"), {}, {place}, {item});
    return place;
}

void JobDocument::copyChannels(const QVector<int>& rows)
{
    QSet<QString> taken;
    for (int i = 0; i < channelCount(); ++i)
        taken.insert(JobChannels::folded(folderOf(i)));
    QVector<int> placed;
    Items items;
    for (const int row : sorted(rows)) {
        OrderedJson::Item item;
        item.value = channel(row);
        item.value.set(folderKey, OrderedJson::text(unlike(folderOf(row), taken)));
        placed.append(row + 1 + placed.size());
        items.append(item);
    }
    if (!items.isEmpty())
        arrange(tr("Copy %1").arg(titleOf(rows)), {}, placed, items);
}

void JobDocument::removeChannels(const QVector<int>& rows)
{
    if (!rows.isEmpty())
        arrange(tr("Remove %1").arg(titleOf(rows)), sorted(rows), {}, {});
}

void JobDocument::moveChannels(const QVector<int>& rows, int row)
{
    const QVector<int> taken = sorted(rows);
    const int first = qBound(0, row, channelCount() - taken.size());
    QVector<int> placed;
    Items items;
    for (const int moved : taken) {
        placed.append(first + placed.size());
        items.append(channels().at(moved));
    }
    if (taken != placed)
        arrange(tr("Move %1").arg(titleOf(rows)), taken, placed, items);
}

void JobDocument::arrange(const QString& text, const QVector<int>& taken, const QVector<int>& placed,
                          const Items& items)
{
    m_undoStack.push(new Arrangement(*this, text, taken, placed, items));
}

void JobDocument::replace(int row, const OrderedJson& channel)
{
    ++m_revision;
    channels()[row].value = channel;
}

JobDocument::Items JobDocument::take(const QVector<int>& rows)
{
    ++m_revision;
    Items taken;
    for (const int row : rows)
        taken.append(channels().at(row));
    const QVector<QPair<int, int>> runs = runsOf(rows);
    for (auto run = runs.crbegin(); run != runs.crend(); ++run) {
        const int last = run->first + run->second - 1;
        Q_EMIT channelsToBeRemoved(run->first, last);
        channels().remove(run->first, run->second);
        Q_EMIT channelsRemoved(run->first, last);
    }
    return taken;
}

void JobDocument::put(const QVector<int>& rows, const Items& items)
{
    ++m_revision;
    int next = 0;
    for (const QPair<int, int>& run : runsOf(rows)) {
        const int last = run.first + run.second - 1;
        Q_EMIT channelsToBeInserted(run.first, last);
        channels().insert(run.first, run.second, OrderedJson::Item());
        for (int row = run.first; row <= last; ++row)
            channels()[row] = items.at(next++);
        Q_EMIT channelsInserted(run.first, last);
    }
}
