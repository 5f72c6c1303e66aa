// SPDX-License-Identifier: MIT
#include "channelscene.h"

#include "build/jobtemplate.h"

#include <QSettings>

void ChannelScene::prepare(const QTemporaryDir& folder)
{
    qputenv("XDG_CACHE_HOME", QFile::encodeName(folder.filePath(QStringLiteral("cache"))));
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
}

ChannelScene::ChannelScene(const QByteArray& job)
{
    m_fault = JobTemplate::write(folder(), {});
    const QString path = folder() + QStringLiteral("/job.json");
    QFile file(path);
    if (!job.isEmpty() && m_fault.isEmpty()
        && (!file.open(QIODevice::WriteOnly) || file.write(job) != job.size()))
        m_fault = file.errorString();
    file.close();
    if (m_fault.isEmpty() && file.open(QIODevice::ReadOnly))
        m_job = file.readAll();
    m_page = std::make_unique<ChannelsPage>(m_document);
    if (m_fault.isEmpty())
        m_document.open(path, m_fault);
}

QString ChannelScene::show()
{
    m_page->resize(1000, 700);
    m_page->show();
    m_page->activateWindow();
    if (!QTest::qWaitForWindowActive(m_page.get()))
        return QStringLiteral("the window does not become active");
    return m_fault;
}

QString ChannelScene::cell(int row, int column) const
{
    return table()->model()->index(row, column).data().toString();
}

QStringList ChannelScene::column(int column) const
{
    QStringList texts;
    for (int row = 0; row < table()->model()->rowCount(); ++row)
        texts.append(cell(row, column));
    return texts;
}

void ChannelScene::clickCell(int row, int column, Qt::KeyboardModifiers modifiers) const
{
    const QModelIndex index = table()->model()->index(row, column);
    table()->scrollTo(index);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, modifiers, table()->visualRect(index).center());
}

QPoint ChannelScene::inWindow(const QWidget* widget, const QPointF& at) const
{
    return widget->mapTo(m_page.get(), at.toPoint());
}

void ChannelScene::press(QWidget* widget, const QPointF& at) const
{
    QTest::mousePress(m_page->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow(widget, at));
}

void ChannelScene::moveTo(QWidget* widget, const QPointF& at) const
{
    QTest::mouseMove(m_page->windowHandle(), inWindow(widget, at));
    QCoreApplication::processEvents();
}

void ChannelScene::release(QWidget* widget, const QPointF& at) const
{
    QTest::mouseRelease(m_page->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow(widget, at));
    QCoreApplication::processEvents();
}

void ChannelScene::drag(QWidget* widget, const QPointF& from, const QPointF& to) const
{
    press(widget, from);
    for (const int step : {1, 2, 3, 4})
        moveTo(widget, from + (to - from) * step / 4);
    release(widget, to);
}
