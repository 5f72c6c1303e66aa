// SPDX-License-Identifier: MIT
#include "work.h"

#include <dbhelper.h>

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTimer>

namespace {

const QString table = QStringLiteral("soak");

class RecordWork : public Work {
public:
    RecordWork();
    ~RecordWork() override;

protected:
    void begin() override;

private:
    void queue();
    int rowsInARound() const { return m_pieces * 2500 / 2 - 1; } // each is changed once
    void judge(const QVariantList& rows, const QString& tag);
    QString nameOf(int id) const { return QStringLiteral("changed %1 in %2").arg(id).arg(m_round); }

    QTemporaryDir m_folder;
    DBHelper* const m_helper = DBHelper::getInstance();
    int m_round = 0;
    int m_pieces = 0; ///< of the round
    QElapsedTimer m_clock;
    qint64 m_due = 0;
};

RecordWork::RecordWork()
    : Work("pieces of 2,500 queued commands")
{
    if (!m_helper->initDatabase(m_folder.filePath(QStringLiteral("records.db"))))
        qFatal("cannot open the database");
    QSqlQuery(QSqlDatabase::database(QStringLiteral("Quenzo")))
        .exec(QStringLiteral("CREATE TABLE soak(id INTEGER PRIMARY KEY, name TEXT)"));
    connect(m_helper, &DBHelper::onSelectFinish, this,
            [this](const QString&, const QVariantList& rows, const QString& tag) { judge(rows, tag); });
    m_helper->StartThread();
}

RecordWork::~RecordWork()
{
    m_helper->closeDB();
}

// A piece each 1.4 s makes more than a million commands in ten minutes. Those that are due go in one round:
// behind each, the worker sleeps for a second.
void RecordWork::begin()
{
    constexpr qint64 interval = 1400;
    constexpr qint64 mostPieces = 8;
    if (!m_clock.isValid())
        m_clock.start();
    const qint64 late = m_clock.elapsed() - m_due;
    m_pieces = static_cast<int>(qBound<qint64>(1, late / interval, mostPieces));
    m_due += m_pieces * interval;
    QTimer::singleShot(static_cast<int>(qMax<qint64>(0, -late)), this, [this] { queue(); });
}

void RecordWork::queue()
{
    const QString id = QStringLiteral("id");
    const QString name = QStringLiteral("name");
    ++m_round;
    for (int i = 0; i < rowsInARound(); ++i) {
        QVariantMap row{{id, i}, {name, QStringLiteral("new")}};
        m_helper->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString());
    }
    for (int i = 0; i < rowsInARound(); ++i) {
        QVariantMap change{{name, nameOf(i)}};
        m_helper->threadToDatabase(DB_UPDATE, table, change, id, i, false, QString());
    }
    m_helper->threadToDatabase(DB_SELECT, table, false, QString::number(m_round));
    m_helper->threadToDatabase(DB_DELETE, table, false, QString());
}

void RecordWork::judge(const QVariantList& rows, const QString& tag)
{
    if (tag.toInt() != m_round || rows.size() != rowsInARound())
        return end(
            QStringLiteral("round %1 reads %2 rows of round %3").arg(m_round).arg(rows.size()).arg(tag));
    for (const QVariant& one : rows) {
        const QVariantMap row = one.toMap();
        if (row.value(QStringLiteral("name")) != nameOf(row.value(QStringLiteral("id")).toInt()))
            return end(QStringLiteral("a row is not what was written"));
    }
    end({}, m_pieces);
}

} // namespace

std::unique_ptr<Work> recordWork()
{
    return std::make_unique<RecordWork>();
}
