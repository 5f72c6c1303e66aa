// SPDX-License-Identifier: MIT
#include "window/channels/jobcontent.h"

#include "fileidentity.h"
#include "jsonplace.h"
#include "wholesave.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <functional>

namespace {

constexpr qint64 mostBytes = 1 << 26; // as a run takes them
const QString channelsKey = QStringLiteral("channels");

QByteArray digestOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha1);
}

QString folderOf(const QString& path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

// Writes the paths of a job anew that are relative to its folder.
class Move {
public:
    Move(const QString& from, const QString& to)
        : m_from(from)
        , m_to(placeOf(to))
    {
    }

    void path(OrderedJson& object, const QString& key) const
    {
        const QString given = object.member(key).toText();
        if (given.isEmpty() || given.startsWith(QLatin1Char('/')))
            return;
        const QString moved = m_to.relativeFilePath(placeBehindLinks(given));
        if (moved != given)
            object.set(key, OrderedJson::text(moved));
    }

    using Edit = std::function<void(OrderedJson& object)>;

    static void inside(OrderedJson& object, const QString& key, const Edit& edit)
    {
        OrderedJson value = object.member(key);
        if (value.kind() != OrderedJson::Object)
            return;
        edit(value);
        object.set(key, value);
    }

private:
    // A link in the place of the file itself stays one: what it leads to may change.
    QString placeBehindLinks(const QString& given) const
    {
        const QString whole = m_from + QLatin1Char('/') + given;
        const QFileInfo file(whole);
        const QString name = file.fileName();
        const bool isNamed = !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..");
        return isNamed ? placeOf(file.path()) + QLatin1Char('/') + name : placeOf(whole);
    }

    QString m_from;
    QDir m_to;
};

// What is read; the folders that are made lie beside the job, wherever that is.
void movePaths(OrderedJson& root, const Move& move)
{
    move.path(root, QStringLiteral("base"));
    Move::inside(root, QStringLiteral("icons"), [&move](OrderedJson& icons) {
        move.path(icons, QStringLiteral("master"));
        move.path(icons, QStringLiteral("marks"));
    });
    Move::inside(root, QStringLiteral("sdks"), [&move](OrderedJson& sdks) {
        for (OrderedJson::Item& sdk : sdks.items()) {
            if (sdk.value.kind() == OrderedJson::Object)
                move.path(sdk.value, QStringLiteral("package"));
        }
    });
    Move::inside(root, QStringLiteral("encryption"),
                 [&move](OrderedJson& encryption) { move.path(encryption, QStringLiteral("key")); });
    Move::inside(root, QStringLiteral("signing"), [&move](OrderedJson& signing) {
        move.path(signing, QStringLiteral("keystore"));
        Move::inside(signing, QStringLiteral("password"),
                     [&move](OrderedJson& password) { move.path(password, QStringLiteral("file")); });
    });
    Move::inside(root, QStringLiteral("defaults"),
                 [&move](OrderedJson& defaults) { move.path(defaults, QStringLiteral("files")); });
}

bool hasChannels(const OrderedJson& root)
{
    const OrderedJson list = root.member(channelsKey);
    return list.kind() == OrderedJson::Array
        && std::all_of(list.items().cbegin(), list.items().cend(), [](const OrderedJson::Item& item) {
               return item.value.kind() == OrderedJson::Object;
           });
}

} // namespace

JobContent JobContent::read(const QString& path)
{
    JobContent job;
    job.path = QFileInfo(path).absoluteFilePath();
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        job.fault = QFileInfo(path).isFile() ? tr("%1 cannot be read: %2").arg(path, file.errorString())
                                             : tr("There is no file %1.").arg(path);
        return job;
    }
    if (file.size() > mostBytes) {
        job.fault = tr("%1 is larger than a job can be.").arg(path);
        return job;
    }
    const QByteArray content = file.readAll();
    job.digest = digestOf(content);
    QString fault;
    job.root = OrderedJson::parse(content, fault);
    if (!fault.isEmpty()) {
        job.fault = tr("%1 is no job, since it is not JSON: %2").arg(path, fault);
        return job;
    }
    const QStringList repeated = JsonPlace::repeatedKeys(content);
    if (!hasChannels(job.root))
        job.fault = tr("%1 is no job: it has no list of \"channels\".").arg(path);
    else if (!repeated.isEmpty())
        job.fault =
            tr("%1 gives %2 twice. Remove one of them with a text editor.").arg(path, repeated.first());
    return job;
}

JobContent JobContent::written() const
{
    JobContent job = *this;
    QFile file(path);
    if (!digest.isEmpty() && file.open(QIODevice::ReadOnly) && digestOf(file.readAll()) != digest) {
        job.fault =
            tr("%1 has been changed by another program. Open it again, or save this job under another name.")
                .arg(path);
        return job;
    }
    const QByteArray whole = root.toUtf8();
    const QString cause = saveWhole(path, whole);
    if (!cause.isEmpty())
        job.fault = tr("%1 cannot be written: %2").arg(path, cause);
    else
        job.digest = digestOf(whole);
    return job;
}

JobContent JobContent::movedTo(const QString& newPath) const
{
    JobContent job = *this;
    job.path = QFileInfo(newPath).absoluteFilePath();
    job.digest.clear();
    const QString from = folderOf(path);
    const QString to = folderOf(job.path);
    const int list = root.indexOf(channelsKey);
    if (from == to || list < 0)
        return job;
    movePaths(job.root, Move(from, to));
    for (OrderedJson::Item& channel : job.root.items()[list].value.items())
        moveChannel(channel.value, from, to);
    return job;
}

void JobContent::moveChannel(OrderedJson& channel, const QString& from, const QString& to)
{
    const QString key = QStringLiteral("files");
    if (channel.indexOf(key) >= 0)
        Move(from, to).path(channel, key);
}
