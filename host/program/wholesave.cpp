// SPDX-License-Identifier: MIT
#include "wholesave.h"

WholeSave::WholeSave(const QString& path)
    : m_file(path)
{
    // Without a buffer, whose last bytes commit() does not miss when they find no room.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        m_fault = m_file.errorString();
}

void WholeSave::write(const QByteArray& content)
{
    // A write that finds room for a part does not tell why; what is left of it does.
    for (qint64 at = 0; at < content.size() && m_fault.isEmpty();) {
        const qint64 written = m_file.write(content.constData() + at, content.size() - at);
        if (written <= 0)
            m_fault = m_file.errorString();
        at += written;
    }
}

QString WholeSave::finish()
{
    if (m_fault.isEmpty() && !m_file.commit())
        m_fault = m_file.errorString();
    return m_fault;
}

QString saveWhole(const QString& path, const QByteArray& content)
{
    WholeSave file(path);
    file.write(content);
    return file.finish();
}
