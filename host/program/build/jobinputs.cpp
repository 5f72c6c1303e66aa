// SPDX-License-Identifier: MIT
#include "build/jobinputs.h"

#include "fileidentity.h"
#include "icons/picturefault.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

struct Inputs {
    Q_DECLARE_TR_FUNCTIONS(JobInputs)
};

bool liesIn(const QString& path, const QString& folder)
{
    return path == folder || folder == QLatin1String("/") || path.startsWith(folder + QLatin1Char('/'));
}

// What stands in the place of a folder that is to be made, or of one above it; empty when nothing does.
QString obstacleOf(const QString& folder)
{
    QFileInfo found(folder);
    while (!found.exists() && found.path() != found.filePath())
        found.setFile(found.path());
    return found.isDir() ? QString() : found.filePath();
}

} // namespace

JobInputs::JobInputs(const QString& job, JobFaults& faults)
    : m_folder(job.left(job.lastIndexOf(QLatin1Char('/'))))
    , m_faults(faults)
{
    m_inputs.append({{}, placeOf(job), false});
}

// Joined by hand: Qt takes a leading colon for the name of a built-in resource.
QString JobInputs::absolute(const QString& path) const
{
    if (path.isEmpty() || path.startsWith(QLatin1Char('/')))
        return path;
    return m_folder + QLatin1Char('/') + (path.startsWith(QLatin1String("./")) ? path.mid(2) : path);
}

QString JobInputs::checked(const JobObject& object, const QString& key, JobObject::Need need, Check check)
{
    QString path = absolute(object.path(key, need));
    const QString place = object.at(key);
    if (path.isEmpty() || m_known.contains(place))
        return path;
    m_known.insert(place);
    const QString fault = check(path);
    if (fault.isEmpty())
        m_inputs.append({place, placeOf(path), check == faultOfFolder});
    else
        object.complain(key, fault);
    return path;
}

QString JobInputs::file(const JobObject& object, const QString& key, JobObject::Need need)
{
    return checked(object, key, need, faultOfFile);
}

QString JobInputs::archive(const JobObject& object, const QString& key, JobObject::Need need)
{
    return checked(object, key, need, faultOfArchive);
}

QString JobInputs::picture(const JobObject& object, const QString& key, JobObject::Need need)
{
    return checked(object, key, need, faultOfPicture);
}

QString JobInputs::folder(const JobObject& object, const QString& key)
{
    return checked(object, key, JobObject::Optional, faultOfFolder);
}

void JobInputs::mark(const QString& path, const QString& place)
{
    if (!m_markFaults.contains(path))
        m_markFaults.insert(path, PictureFault::ofMark(path));
    const QString fault = m_markFaults.value(path);
    if (!fault.isEmpty())
        m_faults.add(place, Inputs::tr("cannot be used: %1").arg(fault));
}

QString JobInputs::place(const JobObject& object, const QString& key)
{
    const QString given = object.has(key) ? object.path(key) : key;
    if (given.isEmpty())
        return {};
    QString made = placeOf(absolute(given));
    const QString obstacle = obstacleOf(made);
    if (!obstacle.isEmpty())
        object.complain(key,
                        obstacle == made
                            ? Inputs::tr("names %1, which is not a folder").arg(made)
                            : Inputs::tr("names %1, and %2 is not a folder").arg(made, obstacle));
    return made;
}

void JobInputs::keepApart(const JobObject& object, const QString& work, const QString& output) const
{
    const QString workKey = QStringLiteral("work");
    const QString outputKey = QStringLiteral("output");
    if (work == output && !work.isEmpty())
        object.complain(outputKey, Inputs::tr("is the work folder, too: %1").arg(output));
    else if (!work.isEmpty() && !output.isEmpty() && liesIn(output, work))
        object.complain(outputKey, Inputs::tr("lies in the work folder %1").arg(work));
    else if (!work.isEmpty() && !output.isEmpty() && liesIn(work, output))
        object.complain(workKey, Inputs::tr("lies in the output folder %1").arg(output));
    keepFromInputs(object, workKey, work);
    keepFromInputs(object, outputKey, output);
}

void JobInputs::keepFromInputs(const JobObject& object, const QString& key, const QString& made) const
{
    for (const Input& input : m_inputs) {
        if (made.isEmpty())
            return;
        if (liesIn(input.path, made))
            object.complain(key,
                            input.place.isEmpty()
                                ? Inputs::tr("is %1, which holds the job itself").arg(made)
                                : Inputs::tr("is %1, which holds what %2 names").arg(made, input.place));
        else if (input.isFolder && liesIn(made, input.path))
            object.complain(
                key, Inputs::tr("is %1, which lies in the folder that %2 names").arg(made, input.place));
    }
}

QString JobInputs::faultOfFile(const QString& path)
{
    const QFileInfo found(path);
    if (!found.exists())
        return Inputs::tr("names %1, which does not exist").arg(path);
    if (!found.isFile()) // a pipe would be waited for
        return Inputs::tr("names %1, which is not a regular file").arg(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Inputs::tr("names %1, which cannot be read: %2").arg(path, file.errorString());
    return {};
}

QString JobInputs::faultOfArchive(const QString& path)
{
    QString fault = faultOfFile(path);
    if (!fault.isEmpty())
        return fault;
    QFile file(path);
    const bool begins = file.open(QIODevice::ReadOnly) && file.read(4) == QByteArray("PK\3\4", 4);
    return begins ? QString() : Inputs::tr("names %1, which is no APK").arg(path);
}

QString JobInputs::faultOfPicture(const QString& path)
{
    QString fault = faultOfFile(path);
    if (!fault.isEmpty())
        return fault;
    const QString cause = PictureFault::ofIcon(path);
    return cause.isEmpty() ? QString() : Inputs::tr("names %1, which is no picture: %2").arg(path, cause);
}

QString JobInputs::faultOfFolder(const QString& path)
{
    const QFileInfo found(path);
    if (!found.exists())
        return Inputs::tr("names %1, which does not exist").arg(path);
    if (!found.isDir())
        return Inputs::tr("names %1, which is not a folder").arg(path);
    if (!found.isReadable() || !found.isExecutable())
        return Inputs::tr("names %1, which cannot be read").arg(path);
    return {};
}
