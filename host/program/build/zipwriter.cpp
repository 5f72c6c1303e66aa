// SPDX-License-Identifier: MIT
#include "build/zipwriter.h"

#include "build/archivefile.h"
#include "build/deflatedcontents.h"
#include "build/packagefile.h"
#include "build/zipformat.h"
#include "build/zipnames.h"

#include <QCoreApplication>
#include <QIODevice>

#include <array>
#include <zlib.h>

using namespace ZipFormat;

namespace {

struct ZipWriterTexts {
    Q_DECLARE_TR_FUNCTIONS(ZipWriterTexts)
};

constexpr int blockSize = 1 << 18;

/** Packs blocks, or hands them on as they are. */
class Packer {
public:
    Packer(quint16 method, PackageFile& out)
        : m_out(out)
        , m_deflates(method == ZipEntry::Deflated)
    {
        if (m_deflates)
            m_isReady = deflateInit2(&m_stream, DeflatedContents::level, Z_DEFLATED, -MAX_WBITS,
                                     MAX_MEM_LEVEL - 1, Z_DEFAULT_STRATEGY)
                == Z_OK;
    }

    ~Packer()
    {
        if (m_deflates && m_isReady)
            deflateEnd(&m_stream);
    }
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    bool isReady() const { return m_isReady; }

    void put(char* bytes, qint64 length, bool isLast)
    {
        if (!m_deflates)
            return m_out.append(bytes, length);
        m_stream.next_in = reinterpret_cast<Bytef*>(bytes);
        m_stream.avail_in = static_cast<uInt>(length);
        do {
            m_stream.next_out = reinterpret_cast<Bytef*>(m_packed.data());
            m_stream.avail_out = static_cast<uInt>(m_packed.size());
            deflate(&m_stream, isLast ? Z_FINISH : Z_NO_FLUSH);
            m_out.append(m_packed.data(), static_cast<qint64>(m_packed.size() - m_stream.avail_out));
        } while (m_stream.avail_out == 0);
    }

private:
    PackageFile& m_out;
    z_stream m_stream{};
    std::array<char, 1 << 16> m_packed{};
    bool m_deflates;
    bool m_isReady = true;
};

} // namespace

// The entry with the place that its header gets.
ZipEntry ZipWriter::begun(const ZipEntry& entry) const
{
    ZipEntry result = entry;
    result.header = m_out.size();
    result.isLong = qMax(entry.size, entry.packed) >= longFrom;
    result.padding = paddingFor(result, result.header + plainHeaderSize(result));
    return result;
}

void ZipWriter::takeOver(const ArchiveFile& archive, const ZipEntry& entry)
{
    const ZipEntry written = begun(entry);
    if (written.padding == entry.padding) {
        m_out.append(archive, entry.header, entry.data + entry.packed - entry.header);
    } else {
        m_out.append(localHeader(written));
        m_out.append(archive, entry.data, entry.packed);
    }
    m_entries.append(written);
    m_content += entry.size;
    m_takenOver += entry.packed;
}

bool ZipWriter::add(const ZipEntry& entry, QIODevice& content)
{
    ZipEntry written = begun(entry);
    const bool isSmall = entry.method == ZipEntry::Deflated && entry.size <= DeflatedContents::largest;
    if (!(isSmall ? packWhole(written, content) : pack(written, content)))
        return false;
    m_entries.append(written);
    m_content += written.size;
    return m_out.error().isEmpty();
}

bool ZipWriter::packWhole(ZipEntry& entry, QIODevice& content)
{
    const QByteArray bytes = content.read(entry.size + 1);
    if (bytes.size() != entry.size)
        return complain(entry, content, bytes.size() > entry.size || content.atEnd());
    entry.crc = static_cast<quint32>(
        crc32(0, reinterpret_cast<const Bytef*>(bytes.constData()), static_cast<uInt>(bytes.size())));
    const QByteArray packed = m_contents.of(bytes);
    if (packed.isEmpty())
        return complain(entry, content, false);
    entry.packed = packed.size();
    m_out.append(localHeader(entry));
    m_out.append(packed);
    return true;
}

// Block by block: what the header says comes last.
bool ZipWriter::pack(ZipEntry& entry, QIODevice& content)
{
    m_out.append(localHeader(entry));
    const qint64 start = m_out.size();
    QByteArray block(blockSize, Qt::Uninitialized);
    Packer packer(entry.method, m_out);
    qint64 size = 0;
    bool isLast = !packer.isReady();
    while (!isLast && m_out.error().isEmpty()) {
        const qint64 length = content.read(block.data(), block.size());
        if (length < 0)
            return complain(entry, content, false);
        isLast = length == 0;
        entry.crc = static_cast<quint32>(
            crc32(entry.crc, reinterpret_cast<const Bytef*>(block.constData()), static_cast<uInt>(length)));
        size += length;
        packer.put(block.data(), length, isLast);
    }
    if (size != entry.size)
        return complain(entry, content, true);
    entry.packed = m_out.size() - start;
    m_out.replace(entry.header, localHeader(entry));
    return true;
}

bool ZipWriter::complain(const ZipEntry& entry, const QIODevice& content, bool isRead)
{
    const QString name = ZipNames::shown(entry.name);
    m_error = isRead ? ZipWriterTexts::tr("'%1' changed while it was packed").arg(name)
                     : ZipWriterTexts::tr("'%1': %2").arg(name, content.errorString());
    return false;
}

bool ZipWriter::finish()
{
    const qint64 start = m_out.size();
    for (const ZipEntry& entry : qAsConst(m_entries))
        m_out.append(centralHeader(entry));
    const qint64 end = m_out.size();
    m_out.append(endRecords(m_entries.size(), start, end));
    if (m_entries.size() > mostEntries || end - start > largestDirectory || m_content > largestContent
        || isBomb(m_content, m_out.size()))
        m_error = ZipWriterTexts::tr("the package would hold more than can be unpacked again");
    return m_error.isEmpty() && m_out.error().isEmpty();
}
