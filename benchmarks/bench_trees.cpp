// SPDX-License-Identifier: MIT
// Directory trees beside the system's own tools, which run as whole processes, as a user would call them.
#include <quenzotool.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <linux/fs.h>
#include <map>
#include <memory>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Work = std::function<bool(const QString& source, const QString& target)>;

// A folder of the benchmark's own on one file system, with fresh folders in it.
class Place {
public:
    enum Tidiness { TidiedAtOnce, TidiedAtEnd };

    Place(const QString& parent, Tidiness tidiness)
        : m_folder(parent + QStringLiteral("/bench_trees.XXXXXX"))
        , m_tidiness(tidiness)
    {
        // Where the file system knows such a wish, every fresh folder begins in an area of its own.
        const int handle = open(qPrintable(m_folder.path()), O_RDONLY | O_CLOEXEC);
        long flags = 0;
        if (ioctl(handle, FS_IOC_GETFLAGS, &flags) == 0) {
            flags |= FS_TOPDIR_FL;
            ioctl(handle, FS_IOC_SETFLAGS, &flags);
        }
        close(handle);
    }

    QString fresh() { return m_folder.filePath(QStringLiteral("fresh%1").arg(m_count++)); }

    void tidy(const QString& path) const
    {
        if (m_tidiness == TidiedAtOnce && path.contains(QLatin1String("/fresh")))
            QDir(path).removeRecursively();
    }

    // A source that several benchmarks read.
    QString shared(const QString& name, const std::function<void(const QString&)>& make)
    {
        const QString path = m_folder.filePath(name);
        if (!QFile::exists(path))
            make(path);
        return path;
    }

private:
    QTemporaryDir m_folder;
    Tidiness m_tidiness;
    int m_count = 0;
};

Place& memory()
{
    static Place place(QStringLiteral("/dev/shm"), Place::TidiedAtOnce);
    return place;
}

// File systems on a disk make files more slowly where others have just gone.
Place& disk()
{
    static Place place(QDir::currentPath(), Place::TidiedAtEnd);
    return place;
}

void writeFile(const QString& path, qint64 size)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    const QByteArray block(1 << 20, 'q');
    for (; size > 0; size -= block.size())
        file.write(block.constData(), qMin<qint64>(size, block.size()));
}

// Folders of a hundred files of up to 8 KiB.
void makeFiles(const QString& path, int files)
{
    for (int i = 0; i < files; ++i) {
        const QString folder = path + QStringLiteral("/folder%1").arg(i / 100);
        if (i % 100 == 0)
            QDir().mkpath(folder);
        writeFile(folder + QStringLiteral("/file%1").arg(i), i * 37 % 8192);
    }
}

void makeNested(const QString& path, int levels)
{
    QString folder = path;
    for (int i = 0; i < levels; ++i) {
        folder += QStringLiteral("/n");
        QDir().mkpath(folder);
        writeFile(folder + QStringLiteral("/f"), 100);
    }
}

Work program(std::initializer_list<const char*> words)
{
    return [words = std::vector<std::string>(words.begin(), words.end())](const QString& source,
                                                                          const QString& target) {
        std::vector<std::string> filled;
        for (const std::string& word : words)
            filled.push_back(QString::fromStdString(word)
                                 .replace(QStringLiteral("SRC"), source)
                                 .replace(QStringLiteral("DEST"), target)
                                 .toStdString());
        std::vector<char*> arguments;
        for (std::string& word : filled)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        pid_t pid = 0;
        int status = 1;
        return posix_spawnp(&pid, arguments.front(), nullptr, nullptr, arguments.data(), environ) == 0
            && waitpid(pid, &status, 0) == pid && status == 0;
    };
}

bool copy(const QString& source, const QString& target)
{
    return QuenzoTool::copyDirectory(QDir(source), QDir(target), true, false);
}

bool move(const QString& source, const QString& target)
{
    return QuenzoTool::copyDirectory(QDir(source), QDir(target), true, true);
}

bool removeFolder(const QString& source, const QString& /*target*/)
{
    QDir folder(source);
    return QuenzoTool::removeRecursively(folder);
}

using Source = std::function<QString(Place&)>;

void add(const std::string& row, const std::string& who, Place& (*place)(), const Source& source,
         const Work& work)
{
    const auto run = [=](benchmark::State& state) {
        for (auto _ : state) {
            const QString from = source(place());
            const QString to = place().fresh();
            sync();
            const auto start = std::chrono::steady_clock::now();
            const bool done = work(from, to);
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            state.SetIterationTime(taken.count());
            if (!done)
                state.SkipWithError("the work was not done");
            place().tidy(from);
            place().tidy(to);
        }
    };
    benchmark::RegisterBenchmark((row + '/' + who).c_str(), run)
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

Source shared(const QString& name, const std::function<void(const QString&)>& make)
{
    return [=](Place& place) { return place.shared(name, make); };
}

Source consumed(const QString& name, const std::function<void(const QString&)>& make)
{
    return [=](Place& place) {
        const QString copied = place.fresh();
        copy(place.shared(name, make), copied);
        return copied;
    };
}

void addCopies(const std::string& row, Place& (*place)(), const Source& source)
{
    add(row, "quenzo", place, source, copy);
    add(row, "cp_-r", place, source, program({"cp", "-r", "SRC", "DEST"}));
    add(row, "rsync_-a", place, source, program({"rsync", "-a", "SRC/", "DEST/"}));
    add(row, "shutil.copytree", place, source,
        program({"python3", "-c", "import shutil; shutil.copytree('SRC', 'DEST')"}));
}

void addMoves(const std::string& row, Place& (*place)(), const Source& source)
{
    add(row, "quenzo", place, source, move);
    add(row, "rsync_-a_--remove-source-files", place, source,
        program({"rsync", "-a", "--remove-source-files", "SRC/", "DEST/"}));
    add(row, "cp_-r_and_rm_-r", place, source, program({"sh", "-c", "cp -r SRC DEST && rm -r SRC"}));
}

void addRemovals(const std::string& row, Place& (*place)(), const Source& source)
{
    add(row, "quenzo", place, source, removeFolder);
    add(row, "rm_-rf", place, source, program({"rm", "-rf", "SRC"}));
}

void addAll()
{
    const auto files = [](int count) { return [count](const QString& path) { makeFiles(path, count); }; };
    const auto nested = [](int levels) {
        return [levels](const QString& path) { makeNested(path, levels); };
    };
    const auto big = [](const QString& path) {
        QDir().mkpath(path);
        writeFile(path + QStringLiteral("/big"), qint64(2) << 30);
    };
    const QString many = QStringLiteral("many");
    addCopies("copy_10,000_files_tmpfs", memory, shared(many, files(10000)));
    addCopies("copy_10,000_files_disk", disk, shared(many, files(10000)));
    addMoves("move_10,000_files_tmpfs", memory, consumed(many, files(10000)));
    addMoves("move_10,000_files_disk", disk, consumed(many, files(10000)));
    addRemovals("remove_10,000_files_tmpfs", memory, consumed(many, files(10000)));
    addRemovals("remove_10,000_files_disk", disk, consumed(many, files(10000)));
    const Source oneBig = shared(QStringLiteral("big"), big);
    add("copy_2_GiB_tmpfs", "quenzo", memory, oneBig, copy);
    add("copy_2_GiB_tmpfs", "cp_-r", memory, oneBig, program({"cp", "-r", "SRC", "DEST"}));
    for (const int count : {1000, 100000}) {
        const QString name = QString::number(count);
        const std::string row = "copy_" + name.toStdString() + "_files_tmpfs";
        add(row, "quenzo", memory, shared(name, files(count)), copy);
        add(row, "cp_-r", memory, shared(name, files(count)), program({"cp", "-r", "SRC", "DEST"}));
    }
    for (const int levels : {8, 80, 800}) {
        const QString name = QStringLiteral("nested%1").arg(levels);
        const std::string row = "copy_" + std::to_string(levels) + "_levels_tmpfs";
        add(row, "quenzo", memory, shared(name, nested(levels)), copy);
        add(row, "cp_-r", memory, shared(name, nested(levels)), program({"cp", "-r", "SRC", "DEST"}));
    }
}

} // namespace

int main(int argc, char** argv)
{
    // As in a host that writes a log of its own; the default would print two lines a file.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    // For a program that watches what a single copy does.
    if (argc == 4 && qstrcmp(argv[1], "copy") == 0)
        return copy(QFile::decodeName(argv[2]), QFile::decodeName(argv[3])) ? 0 : 1;
    addAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
