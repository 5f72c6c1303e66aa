// SPDX-License-Identifier: MIT
#include "build/zipcontent.h"

#include "build/archivefile.h"
#include "build/zipdirectory.h"
#include "build/zipnames.h"

#include <QCoreApplication>

#include <algorithm>
#include <zlib.h>

namespace {

struct ZipContentTexts {
    Q_DECLARE_TR_FUNCTIONS(ZipContentTexts)
};

constexpr qint64 blockSize = 1 << 18;

} // namespace

struct ZipContent::Inflater {
    Inflater() { isReady = inflateInit2(&stream, -MAX_WBITS) == Z_OK; }
    ~Inflater()
    {
        if (isReady)
            inflateEnd(&stream);
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    z_stream stream{};
    bool isReady = false;
    bool isAtEnd = false;
    QByteArray packed;
    QByteArray content = QByteArray(blockSize, Qt::Uninitialized);
};

ZipContent::ZipContent(const ArchiveFile& archive, const ZipEntry& entry)
    : m_archive(archive)
    , m_entry(entry)
    , m_inflater(entry.method == ZipEntry::Deflated ? std::make_unique<Inflater>() : nullptr)
{
}

ZipContent::~ZipContent() = default;

QByteArray ZipContent::next()
{
    QByteArray block = m_inflater ? inflated() : stored();
    if (!m_error.isEmpty())
        return {};
    m_size += block.size();
    m_crc = static_cast<quint32>(
        crc32(m_crc, reinterpret_cast<const Bytef*>(block.constData()), static_cast<uInt>(block.size())));
    if (m_size > m_entry.size)
        return fail(ZipContentTexts::tr("it unpacks to more than it declares"));
    if (block.isEmpty() && (m_size != m_entry.size || m_crc != m_entry.crc))
        return fail(ZipContentTexts::tr("it is damaged (size or checksum)"));
    return block;
}

QByteArray ZipContent::stored()
{
    const qint64 length = qMin(blockSize, m_entry.packed - m_read);
    QByteArray block = m_archive.read(m_entry.data + m_read, length);
    m_read += block.size();
    return block.size() == length ? block : fail(m_archive.error());
}

QByteArray ZipContent::inflated()
{
    z_stream& stream = m_inflater->stream;
    QByteArray& content = m_inflater->content;
    stream.next_out = reinterpret_cast<Bytef*>(content.data());
    stream.avail_out = static_cast<uInt>(content.size());
    int result = m_inflater->isReady ? Z_OK : Z_MEM_ERROR;
    while (result == Z_OK && !m_inflater->isAtEnd && stream.avail_out > 0) {
        if (stream.avail_in == 0) {
            m_inflater->packed =
                m_archive.read(m_entry.data + m_read, qMin(blockSize, m_entry.packed - m_read));
            m_read += m_inflater->packed.size();
            stream.next_in = reinterpret_cast<Bytef*>(m_inflater->packed.data());
            stream.avail_in = static_cast<uInt>(m_inflater->packed.size());
        }
        result = inflate(&stream, Z_NO_FLUSH);
        m_inflater->isAtEnd = result == Z_STREAM_END;
    }
    if (result != Z_OK && result != Z_STREAM_END)
        return fail(m_archive.error());
    // The stream has to end exactly where the packed bytes do.
    if (m_inflater->isAtEnd && (stream.avail_in > 0 || m_read < m_entry.packed))
        return fail(ZipContentTexts::tr("it has bytes behind its end"));
    return QByteArray::fromRawData(content.constData(), content.size() - static_cast<int>(stream.avail_out));
}

// Without a reason of the system's it is the archive's fault.
QByteArray ZipContent::fail(const QString& reason)
{
    m_error = ZipContentTexts::tr("'%1': %2")
                  .arg(ZipNames::shown(m_entry.name),
                       reason.isEmpty() ? ZipContentTexts::tr("it is damaged or cut off") : reason);
    return {};
}

QByteArray contentOfEntry(const QString& archive, const QByteArray& name, QString& fault)
{
    constexpr qint64 most = 1 << 24;
    ArchiveFile file;
    ZipDirectory directory;
    fault = file.open(archive) ? directory.read(file) : file.error();
    if (!fault.isEmpty())
        return {};
    const auto entry = std::find_if(directory.entries.cbegin(), directory.entries.cend(),
                                    [&name](const ZipEntry& one) { return one.name == name; });
    if (entry == directory.entries.cend() || entry->size > most) {
        fault = entry == directory.entries.cend()
            ? ZipContentTexts::tr("'%1' has no entry '%2'").arg(archive, QString::fromUtf8(name))
            : ZipContentTexts::tr("the entry '%2' of '%1' is too large")
                  .arg(archive, QString::fromUtf8(name));
        return {};
    }
    ZipContent content(file, *entry);
    QByteArray whole;
    for (QByteArray block = content.next(); !block.isEmpty(); block = content.next())
        whole += block;
    fault = content.error();
    return fault.isEmpty() ? whole : QByteArray();
}
