// SPDX-License-Identifier: MIT
// The real walks beside an in-memory model of them, over hundreds of random trees.
#include <quenzotool.h>
#include <threadcommon.h>

#include "messagelog.h"
#include "runroot.h"
#include "treemodel.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

#include <sys/stat.h>

namespace {

const QStringList names{QStringLiteral("a"),    QStringLiteral("b"),     QStringLiteral("ab"),
                        QStringLiteral("o"),    QStringLiteral("ou"),    QStringLiteral("out"),
                        QStringLiteral("log"),  QStringLiteral("Log"),   QStringLiteral("BUILD"),
                        QStringLiteral("work"), QStringLiteral("work2"), QStringLiteral(".dot")};

class Cutter : public ThreadCommon {
public:
    using ThreadCommon::cutForOutput;
    using ThreadCommon::m_exceptDir;
    using ThreadCommon::m_outputDir;
};

/** The same random tree on a disk and in the model. */
class Scene {
public:
    Scene(const QString& above, const ListingOrder& order, quint32 seed)
        : m_random(seed)
        , m_folder(above + QStringLiteral("/walk.XXXXXX"))
        , model(order)
        , place(m_folder.path())
        , root(place + QStringLiteral("/scene"))
    {
        QDir().mkdir(root);
        model.makePath(root);
        fill(root, 3);
    }

    int below(int limit) { return m_random.bounded(limit); }
    QString name() { return names.at(below(names.size())); }

    /** A path that may or may not exist, whose relation to others is left to chance. */
    QString path()
    {
        QString chosen = root;
        for (int depth = 1 + below(3); depth > 0; --depth)
            chosen += QLatin1Char('/') + name();
        return chosen;
    }

    QString existingFolder()
    {
        for (int tries = 0; tries < 20; ++tries) {
            QString chosen = path();
            if (QDir(chosen).exists())
                return chosen;
        }
        return root;
    }

private:
    void fill(const QString& folder, int depth)
    {
        for (int i = below(7); i >= 0; --i) {
            const QString entry = folder + QLatin1Char('/') + name();
            if (depth > 0 && below(2) == 0) {
                if (model.makeFolder(entry) && QDir().mkdir(entry))
                    fill(entry, depth - 1);
                continue;
            }
            const QByteArray content = QByteArray::number(m_random.generate());
            QFile file(entry);
            if (model.writeFile(entry, content) && file.open(QIODevice::WriteOnly))
                file.write(content);
        }
    }

    QRandomGenerator m_random;
    QTemporaryDir m_folder;

public:
    TreeModel model;
    const QString place; ///< holds the root, and what is made beside it
    const QString root;
};

QByteArray difference(const QMap<QString, QByteArray>& real, const QMap<QString, QByteArray>& modelled)
{
    QByteArray text;
    for (auto entry = real.cbegin(); entry != real.cend(); ++entry) {
        if (modelled.value(entry.key()) != entry.value())
            text += "\n really " + entry.key().toUtf8() + ": " + entry.value();
    }
    for (auto entry = modelled.cbegin(); entry != modelled.cend(); ++entry) {
        if (real.value(entry.key()) != entry.value())
            text += "\n expected " + entry.key().toUtf8() + ": " + entry.value();
    }
    return text;
}

QStringList failedCopies()
{
    QStringList copies;
    const QStringList lines = QString::fromUtf8(RunRoot::log()).split(QStringLiteral("\r\n"));
    for (int i = 1; i < lines.size(); ++i) {
        if (lines.at(i).startsWith(QLatin1String("Dest:")))
            copies.append(lines.at(i - 1).mid(4) + QStringLiteral(" > ") + lines.at(i).mid(5));
    }
    return copies;
}

} // namespace

class tst_TreeWalks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { RunRoot::clear(); }
    void cleanup() { QCOMPARE(m_messages->takeWarnings(), QStringList()); }

    void copiesLikeTheModel_data();
    void copiesLikeTheModel();
    void cutsForOutputLikeTheModel_data();
    void cutsForOutputLikeTheModel();
    void cutsAroundLikeTheModel_data();
    void cutsAroundLikeTheModel();

private:
    void addSeeds(int count);
    static void forEachScene(const std::function<void(Scene&, quint32)>& compare);

    std::unique_ptr<MessageLog> m_messages;
};

void tst_TreeWalks::initTestCase()
{
    umask(022);
    m_messages = std::make_unique<MessageLog>();
}

void tst_TreeWalks::addSeeds(int count)
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<quint32>("firstSeed");
    const QString shared = QStringLiteral("/dev/shm");
    for (const QString& place : {QDir::tempPath(), shared}) {
        if (!QFileInfo(place).isWritable())
            continue;
        // A move waits for the disk, which a test shares with others.
        for (int i = 0; i < (place == shared ? count : 1); ++i)
            QTest::addRow("%s %d", qUtf8Printable(place), i) << place << quint32(i * 100);
    }
}

// Stops at the first scene that differs.
void tst_TreeWalks::forEachScene(const std::function<void(Scene&, quint32)>& compare)
{
    QFETCH(QString, place);
    QFETCH(quint32, firstSeed);
    const ListingOrder order(place, names);
    if (!order.isKnown())
        QSKIP("the order in which this file system lists its entries cannot be foretold");
    for (quint32 seed = firstSeed; seed < firstSeed + 100 && !QTest::currentTestFailed(); ++seed) {
        Scene scene(place, order, seed);
        compare(scene, seed);
    }
}

void tst_TreeWalks::copiesLikeTheModel_data()
{
    addSeeds(4);
}

void tst_TreeWalks::copiesLikeTheModel()
{
    forEachScene([&](Scene& scene, quint32 seed) {
        const QString source = scene.existingFolder();
        const QString target = scene.below(3) == 0 ? scene.existingFolder() : scene.path();
        const bool overwrite = scene.below(3) > 0;
        const bool deleteSource = scene.below(2) == 0;
        const bool expected = scene.model.copyDirectory(source, target, overwrite, deleteSource);
        const bool real = QuenzoTool::copyDirectory(QDir(source), QDir(target), overwrite, deleteSource);
        const QByteArray what = source.toUtf8() + " to " + target.toUtf8() + (overwrite ? " overwrite" : "")
            + (deleteSource ? " move" : "") + ", seed " + QByteArray::number(seed);
        const QByteArray different =
            difference(TreeModel::contentOnDisk(scene.place), scene.model.content(scene.place));
        QVERIFY2(different.isEmpty(), qPrintable(QString::fromUtf8(what + different)));
        QVERIFY2(real == expected, what.constData());
    });
}

void tst_TreeWalks::cutsForOutputLikeTheModel_data()
{
    addSeeds(4);
}

void tst_TreeWalks::cutsForOutputLikeTheModel()
{
    const QStringList filters{QString(),
                              QStringLiteral("Log,build"),
                              QStringLiteral("a, b"),
                              QStringLiteral("OUT"),
                              QStringLiteral(",work2,,"),
                              QStringLiteral("AB,O,ou")};
    forEachScene([&](Scene& scene, quint32 seed) {
        const QString source = scene.existingFolder();
        QString target = scene.path();
        const int relation = scene.below(4);
        if (relation == 0)
            target = source + QLatin1Char('/') + scene.name();
        else if (relation == 1)
            target = source + QLatin1Char('2');
        QVariantMap map{{QStringLiteral("src"), source}, {QStringLiteral("dest"), target}};
        const QString& filter = filters.at(scene.below(filters.size()));
        if (!filter.isNull())
            map.insert(QStringLiteral("filter"), filter);
        const QStringList leftBehind = filter.isNull() ? QStringList() : filter.split(QLatin1Char(','));
        scene.model.outputDir = target;
        const bool expected = scene.model.cutForOutput(source, target, &leftBehind);

        RunRoot::clear();
        Cutter cutter;
        cutter.StartOperate(OPERATE_CUT_OUTPUT, map);
        cutter.start();
        QVERIFY(cutter.wait());
        const QByteArray what = source.toUtf8() + " to " + target.toUtf8() + " without '" + filter.toUtf8()
            + "', seed " + QByteArray::number(seed);
        const QByteArray different =
            difference(TreeModel::contentOnDisk(scene.place), scene.model.content(scene.place));
        QVERIFY2(different.isEmpty(), qPrintable(QString::fromUtf8(what + different)));
        QVERIFY2(cutter.getResult() == QVariant(expected), what.constData());
        QVERIFY2(failedCopies() == scene.model.log, what.constData());
        QVERIFY2(cutter.m_exceptDir == scene.model.exceptDir, what.constData());
    });
}

void tst_TreeWalks::cutsAroundLikeTheModel_data()
{
    addSeeds(2);
}

void tst_TreeWalks::cutsAroundLikeTheModel()
{
    forEachScene([&](Scene& scene, quint32 seed) {
        const QString source = scene.existingFolder();
        const QString target = scene.path();
        const QString except = scene.below(2) == 0 ? source : scene.existingFolder();
        Cutter cutter;
        cutter.m_exceptDir = except;
        // Any other folder would let a target inside the source be moved into itself until the path is too
        // long.
        cutter.m_outputDir = target.startsWith(source) ? target : scene.existingFolder();
        scene.model.exceptDir = except;
        scene.model.outputDir = cutter.m_outputDir;
        RunRoot::clear();
        const bool around = scene.below(2) == 0;
        const bool expected = around ? scene.model.exceptCut(source, target)
                                     : scene.model.cutForOutput(source, target, nullptr);
        const bool real = around ? cutter.exceptCut(source, target, QString())
                                 : cutter.cutForOutput(QDir(source), QDir(target), nullptr);
        const QByteArray what = source.toUtf8() + " to " + target.toUtf8() + " around " + except.toUtf8()
            + ", seed " + QByteArray::number(seed);
        const QByteArray different =
            difference(TreeModel::contentOnDisk(scene.place), scene.model.content(scene.place));
        QVERIFY2(different.isEmpty(), qPrintable(QString::fromUtf8(what + different)));
        QVERIFY2(real == expected, what.constData());
        QVERIFY2(failedCopies() == scene.model.log, what.constData());
    });
}

QTEST_GUILESS_MAIN(tst_TreeWalks)
#include "tst_treewalks.moc"
