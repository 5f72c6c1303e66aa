// SPDX-License-Identifier: MIT
// Channel icons beside the plain loop over Qt, beside other programs that do the same on all cores, and
// beside the limit: deflating each distinct file once, with nothing read, drawn, scaled, filtered or written.
#include "iconpictures.h"
#include "peers/icons_vips.h"

#include <threadgenerateicon.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QDirIterator>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtEndian>

#include <atomic>
#include <chrono>
#include <functional>
#include <sys/resource.h>
#ifdef QUENZO_HAVE_LIBDEFLATE
#include <libdeflate.h>
#include <thread>
#endif

namespace {

constexpr int masterSide = 512;

struct Job {
    int platform; // as the library counts them
    int channels;
    int marks; // channel i has mark i modulo this

    QVector<int> sides() const
    {
        return platform == 0 ? QVector<int>{36, 48, 72, 96, 144, 192}
                             : QVector<int>{29, 40, 50, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 152, 180};
    }
    QString pattern() const
    {
        return platform == 0 ? QStringLiteral("icon{}x{}.png") : QStringLiteral("Icon-{}.png");
    }
    QString fileName(int side) const { return pattern().replace(QLatin1String("{}"), QString::number(side)); }
    int files() const { return channels * (sides().size() + 1); }
};

const QString unscaledName = QStringLiteral("icon512x512.png");
const QPoint markPlace(340, 340);

// The pictures, made once, and the folder that the files go to. In memory, so that no disk is measured.
class Place {
public:
    Place()
    {
        IconPictures::photograph(masterSide, masterSide).save(master());
        for (int i = 0; i < 200; ++i) {
            QDir().mkpath(QFileInfo(mark(i)).path());
            IconPictures::mark(128 + i % 40, QColor::fromHsv(i * 359 / 200, 255, 220, 230)).save(mark(i));
        }
    }

    QString master() const { return m_folder.filePath(QStringLiteral("master.png")); }
    QString marks() const { return m_folder.filePath(QStringLiteral("marks")); }
    QString mark(int i) const { return marks() + QStringLiteral("/m%1/icon/right-bottom.png").arg(i); }
    QString list() const { return m_folder.filePath(QStringLiteral("list")); }
    QString out(int channel) const { return out() + QStringLiteral("c%1").arg(channel); }
    QString out() const { return m_folder.filePath(QStringLiteral("out/")); }

    // The folder is there and empty afterwards.
    void clear() const
    {
        QDir(out()).removeRecursively();
        QDir().mkpath(out());
    }

private:
    QTemporaryDir m_folder{QStringLiteral("/dev/shm/bench_icons.XXXXXX")};
};

Place& place()
{
    static Place only;
    return only;
}

using Work = std::function<bool(const Job&)>;

// Of this process and the programs it ran, on all cores: what a busy machine does not change.
double processorSeconds()
{
    double seconds = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& part : {usage.ru_utime, usage.ru_stime})
            seconds += static_cast<double>(part.tv_sec) + static_cast<double>(part.tv_usec) / 1e6;
    }
    return seconds;
}

bool quenzo(const Job& job)
{
    QList<ST_CHANNEL_ICON> channels;
    for (int i = 0; i < job.channels; ++i)
        channels.append({markPlace.x(), -markPlace.y(), 3, QStringLiteral("m%1").arg(i % job.marks),
                         QStringLiteral("c%1").arg(i)});
    ThreadGenerateIcon thread;
    thread.setGameInfo(place().master(), 3, 0, 0, job.platform);
    thread.setInfo(place().marks(), channels);
    thread.setOutputDir(place().out());
    thread.start();
    return thread.wait();
}

bool sequentialLoop(const Job& job)
{
    for (int i = 0; i < job.channels; ++i) {
        const QString folder = place().out(i) + QLatin1Char('/');
        QDir().mkdir(folder);
        QImage icon(place().master());
        QPainter painter(&icon);
        painter.drawImage(markPlace, QImage(place().mark(i % job.marks)));
        painter.end();
        for (const int side : job.sides())
            icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                .save(folder + job.fileName(side));
        icon.save(folder + unscaledName);
    }
    return true;
}

[[maybe_unused]] bool runProgram(const QString& program, const QStringList& arguments,
                                 const QString& input = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setStandardInputFile(input.isEmpty() ? QProcess::nullDevice() : input);
    process.start(program, arguments);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

// Writes a line a channel into the list file.
[[maybe_unused]] bool writeList(const Job& job,
                                const std::function<QString(const QString&, const QString&)>& line)
{
    QFile file(place().list());
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QTextStream text(&file);
    for (int i = 0; i < job.channels; ++i)
        text << line(place().mark(i % job.marks), place().out(i)) << '\n';
    return true;
}

#ifdef PILLOW_PYTHON
bool pillow(const Job& job)
{
    const bool listed = writeList(job, [](const QString& mark, const QString& folder) {
        return QStringLiteral("%1\t%2\t%3\t%4").arg(mark).arg(markPlace.x()).arg(markPlace.y()).arg(folder);
    });
    QStringList arguments{QStringLiteral(PILLOW_SCRIPT), place().master(), place().list(), job.pattern()};
    for (const int side : job.sides())
        arguments.append(QString::number(side));
    return listed && runProgram(QStringLiteral(PILLOW_PYTHON), arguments);
}
#endif

#ifdef IMAGEMAGICK
// A process a channel, as many at a time as there are cores.
bool imageMagick(const Job& job)
{
    const bool listed = writeList(job, [&job](const QString& mark, const QString& folder) {
        QDir().mkdir(folder);
        QString line =
            QStringLiteral("-limit thread 1 %1 %2 -geometry +%3+%4 -composite -filter Triangle")
                .arg(place().master(), mark, QString::number(markPlace.x()), QString::number(markPlace.y()));
        for (const int side : job.sides())
            line += QStringLiteral(" ( +clone -resize %1x%1 -write %2/%3 +delete )")
                        .arg(QString::number(side), folder, job.fileName(side));
        return QString(line + QLatin1Char(' ') + folder + QLatin1Char('/') + unscaledName);
    });
    const QString cores = QString::number(QThread::idealThreadCount());
    return listed
        && runProgram(QStringLiteral("xargs"),
                      {QStringLiteral("-L1"), QStringLiteral("-P"), cores, QStringLiteral(IMAGEMAGICK)},
                      place().list());
}
#endif

#ifdef QUENZO_HAVE_VIPS
bool vips(const Job& job, VipsFilters filters)
{
    std::vector<PeerChannel> channels;
    for (int i = 0; i < job.channels; ++i) {
        QDir().mkdir(place().out(i));
        channels.push_back({QFile::encodeName(place().mark(i % job.marks)).toStdString(), markPlace.x(),
                            markPlace.y(), QFile::encodeName(place().out(i)).toStdString()});
    }
    std::vector<PeerFile> files;
    for (const int side : job.sides())
        files.push_back({side, job.fileName(side).toStdString()});
    files.push_back({0, unscaledName.toStdString()});
    return writeIconsWithVips(QFile::encodeName(place().master()).toStdString(), channels, files, filters);
}
#endif

void add(const std::string& row, const std::string& who, const Job& job, const Work& work)
{
    const auto run = [=](benchmark::State& state) {
        for (auto _ : state) {
            place().clear();
            const double processorBefore = processorSeconds();
            const auto start = std::chrono::steady_clock::now();
            const bool done = work(job);
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            state.SetIterationTime(taken.count());
            state.counters["processor_s"] = processorSeconds() - processorBefore;
            int files = 0;
            qint64 bytes = 0;
            QDirIterator all(place().out(), QDir::Files, QDirIterator::Subdirectories);
            for (; all.hasNext(); ++files) {
                all.next();
                bytes += all.fileInfo().size();
            }
            state.counters["MB"] = static_cast<double>(bytes) / 1e6;
            if (!done || files != job.files())
                state.SkipWithError("the icons were not made");
        }
        place().clear();
    };
    benchmark::RegisterBenchmark((row + '/' + who).c_str(), run)
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

#ifdef QUENZO_HAVE_LIBDEFLATE
struct Stream {
    std::vector<char> content; // the filtered rows
    int times; // files with it
};

// What our own files hold in deflated form; equal files count once.
std::vector<Stream> distinctStreams(const Job& job)
{
    quenzo(job);
    libdeflate_decompressor* const decompressor = libdeflate_alloc_decompressor();
    std::vector<Stream> streams;
    // With fewer marks than channels, the channels of the first round have all distinct files.
    for (int channel = 0; channel < job.marks; ++channel) {
        for (const QFileInfo& entry : QDir(place().out(channel)).entryInfoList(QDir::Files)) {
            QFile file(entry.filePath());
            if (!file.open(QIODevice::ReadOnly))
                return {};
            const QByteArray png = file.readAll();
            QByteArray deflated;
            for (int at = 8; at + 12 <= png.size();) {
                const auto size = static_cast<int>(qFromBigEndian<quint32>(png.constData() + at));
                if (png.mid(at + 4, 4) == "IDAT")
                    deflated += png.mid(at + 8, size);
                at += size + 12;
            }
            std::vector<char> content(masterSide * (masterSide * 4 + 1));
            std::size_t size = 0;
            if (libdeflate_zlib_decompress(decompressor, deflated.constData(),
                                           static_cast<std::size_t>(deflated.size()), content.data(),
                                           content.size(), &size)
                != LIBDEFLATE_SUCCESS)
                return {};
            content.resize(size);
            content.shrink_to_fit();
            streams.push_back({std::move(content), job.channels / job.marks});
        }
    }
    libdeflate_free_decompressor(decompressor);
    place().clear();
    return streams;
}

// Gives the sum of the deflated sizes.
qint64 deflateOnAllCores(const std::vector<Stream>& streams)
{
    constexpr int level = 5; // the library's
    std::atomic<std::size_t> next{0};
    std::atomic<qint64> bytes{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < QThread::idealThreadCount(); ++i) {
        threads.emplace_back([&] {
            libdeflate_compressor* const compressor = libdeflate_alloc_compressor(level);
            std::vector<char> room(
                libdeflate_zlib_compress_bound(compressor, masterSide * (masterSide * 4 + 1)));
            for (std::size_t at = next++; at < streams.size(); at = next++) {
                const Stream& stream = streams[at];
                bytes += stream.times
                    * static_cast<qint64>(libdeflate_zlib_compress(
                        compressor, stream.content.data(), stream.content.size(), room.data(), room.size()));
            }
            libdeflate_free_compressor(compressor);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return bytes;
}

void addLimit(const std::string& row, const Job& job)
{
    const auto run = [job](benchmark::State& state) {
        for (auto _ : state) {
            place().clear();
            const std::vector<Stream> streams = distinctStreams(job);
            const double processorBefore = processorSeconds();
            const auto start = std::chrono::steady_clock::now();
            const qint64 bytes = deflateOnAllCores(streams);
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            state.SetIterationTime(taken.count());
            state.counters["processor_s"] = processorSeconds() - processorBefore;
            state.counters["MB"] = static_cast<double>(bytes) / 1e6;
            if (static_cast<int>(streams.size()) != job.marks * (job.sides().size() + 1))
                state.SkipWithError("our own files could not be read");
        }
    };
    benchmark::RegisterBenchmark((row + "/limit").c_str(), run)
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}
#endif

void addPeers(const std::string& row, const Job& job)
{
#ifdef IMAGEMAGICK
    add(row, "ImageMagick", job, imageMagick);
#endif
#ifdef PILLOW_PYTHON
    add(row, "Pillow", job, pillow);
#endif
#ifdef QUENZO_HAVE_VIPS
    // Its default, which makes files twice as large, and what the others do.
    add(row, "libvips_unfiltered", job, [](const Job& each) { return vips(each, Unfiltered); });
    add(row, "libvips", job, [](const Job& each) { return vips(each, AdaptivelyFiltered); });
#endif
    Q_UNUSED(row)
    Q_UNUSED(job)
}

void addOurs(const std::string& row, const Job& job)
{
    add(row, "quenzo", job, quenzo);
#ifdef QUENZO_HAVE_LIBDEFLATE
    addLimit(row, job);
#endif
}

void addLoop(const std::string& row, const Job& job)
{
    add(row, "sequential_QImage::save", job, sequentialLoop);
}

} // namespace

int main(int argc, char** argv)
{
    const std::pair<std::string, int> platforms[]{{"android", 0}, {"ios", 1}};
    for (const auto& [name, platform] : platforms) {
        const Job different{platform, 200, 200};
        const Job equal{platform, 200, 8};
        addOurs(name + "_200_channels,_200_marks", different);
        addLoop(name + "_200_channels,_200_marks", different);
        addPeers(name + "_200_channels,_200_marks", different);
        addOurs(name + "_200_channels,_eight_marks", equal);
        addLoop(name + "_200_channels,_eight_marks", equal);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
