// SPDX-License-Identifier: MIT
#include "recordsfixture.h"

#include "runroot.h"

#include <QtTest>

void RecordsFixture::init()
{
    RunRoot::clear();
    m_log = std::make_unique<MessageLog>();
    m_database = std::make_unique<SteppedDatabase>();
    m_database->openNew();
}

void RecordsFixture::cleanup()
{
    m_database.reset();
    const QStringList warnings = m_log->takeWarnings();
    m_log.reset();
    QCOMPARE(warnings, QStringList());
}

Row row(const QVariant& id, const QVariant& name)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("name"), name}};
}
