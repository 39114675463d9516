#include "system/AvailableMemory.h"
#include "system/GroupMemory.h"
#include "tests/support/AddressLimit.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <unistd.h>

namespace
{

/// A folder that stands for the root of the file system.
class MadeRoot
{
public:
    void write(const char* path, const QByteArray& text) const
    {
        const QString name = m_dir.path() + QLatin1String(path);
        QDir().mkpath(QFileInfo(name).path());
        create(name, text);
    }
    std::string path() const { return m_dir.path().toStdString(); }

private:
    QTemporaryDir m_dir;
};

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

} // namespace

class tst_AvailableMemory : public QObject
{
    Q_OBJECT

private slots:
    void whatTheSystemHasAvailable();
    void withoutThatFigureAllPages();
    void leastOfSystemAndGroup();
    void addressSpaceOfTheProcess();
    void groupOfVersion2();
    void groupOfVersion2AroundTheProcess();
    void brakeOfVersion2();
    void groupOfVersion1();
    void pagesOfFilesAreFree();
    void moreUsedThanAllowed();
    void bothVersionsAtOnce();
    void pathOfAnotherView();
    void pathOutOfTheMount();
    void nothingKnown();
    void brokenFiles();
};

void tst_AvailableMemory::whatTheSystemHasAvailable()
{
    const MadeRoot root;
    root.write("/proc/meminfo", "MemTotal:       16000 kB\n"
                                "MemFree:          100 kB\n"
                                "MemAvailable:    5000 kB\n"
                                "HugePages_Total:    0\n");
    QCOMPARE(availableMemory(root.path()), std::size_t{5000 * 1024});
}

void tst_AvailableMemory::withoutThatFigureAllPages()
{
    const MadeRoot root;
    root.write("/proc/meminfo", "MemTotal:       16000 kB\nMemFree:          100 kB\n");
    QCOMPARE(availableMemory(root.path()), static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) *
                                               static_cast<std::size_t>(sysconf(_SC_PAGESIZE)));
}

void tst_AvailableMemory::leastOfSystemAndGroup()
{
    const MadeRoot root;
    root.write("/proc/meminfo", "MemAvailable: 5000 kB\n");
    root.write("/proc/self/cgroup", "0::/\n");
    root.write("/sys/fs/cgroup/memory.max", "3000000\n");
    root.write("/sys/fs/cgroup/memory.current", "1000000\n");
    QCOMPARE(availableMemory(root.path()), std::size_t{2000000});
    root.write("/sys/fs/cgroup/memory.max", "9000000\n"); // leaves more than the system has
    QCOMPARE(availableMemory(root.path()), std::size_t{5000 * 1024});
}

void tst_AvailableMemory::addressSpaceOfTheProcess()
{
    const MadeRoot root;
    root.write("/proc/meminfo", "MemAvailable: 999999999999 kB\n");
    root.write("/proc/self/statm", "1000 200 100 10 0 50 0\n");
    constexpr rlim_t bytes = rlim_t{1} << 46; // no hindrance to the test itself
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    {
        const AddressLimit limit(bytes);
        QCOMPARE(availableMemory(root.path()), bytes - 1000 * page);
        root.write("/proc/meminfo", "MemAvailable: 5000 kB\n");
        QCOMPARE(availableMemory(root.path()), std::size_t{5000 * 1024});
        root.write("/proc/self/statm", "99999999999 200 100 10 0 50 0\n");
        QCOMPARE(availableMemory(root.path()), std::size_t{0});
    }
    QCOMPARE(availableMemory(root.path()), std::size_t{5000 * 1024});
}

void tst_AvailableMemory::groupOfVersion2()
{
    const MadeRoot root;
    root.write("/proc/self/cgroup", "0::/user.slice/a b:c.scope\n");
    root.write("/sys/fs/cgroup/user.slice/a b:c.scope/memory.max", "5000000\n");
    root.write("/sys/fs/cgroup/user.slice/a b:c.scope/memory.current", "1000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(4000000));
}

void tst_AvailableMemory::groupOfVersion2AroundTheProcess()
{
    const MadeRoot root;
    root.write("/proc/self/cgroup", "0::/outer/middle/inner\n");
    root.write("/sys/fs/cgroup/outer/memory.max", "5000000\n");
    root.write("/sys/fs/cgroup/outer/memory.current", "1500000\n");
    root.write("/sys/fs/cgroup/outer/middle/memory.max", "max\n");
    root.write("/sys/fs/cgroup/outer/middle/memory.current", "1000000\n");
    root.write("/sys/fs/cgroup/outer/middle/inner/memory.max", "4900000\n");
    root.write("/sys/fs/cgroup/outer/middle/inner/memory.current", "1000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(3500000));
    root.write("/sys/fs/cgroup/memory.max", "9000000\n"); // as the root has it in a container
    root.write("/sys/fs/cgroup/memory.current", "8000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(1000000));
    // A group beside the way does not matter.
    root.write("/sys/fs/cgroup/outer/other/memory.max", "10\n");
    root.write("/sys/fs/cgroup/outer/other/memory.current", "5\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(1000000));
}

void tst_AvailableMemory::brakeOfVersion2()
{
    const MadeRoot root;
    root.write("/proc/self/cgroup", "0::/a\n");
    root.write("/sys/fs/cgroup/a/memory.max", "max\n");
    root.write("/sys/fs/cgroup/a/memory.high", "3000000\n");
    root.write("/sys/fs/cgroup/a/memory.current", "1000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(2000000));
    root.write("/sys/fs/cgroup/a/memory.max", "2500000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(1500000));
    root.write("/sys/fs/cgroup/a/memory.high", "max\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(1500000));
}

void tst_AvailableMemory::groupOfVersion1()
{
    const MadeRoot root;
    root.write("/proc/self/cgroup", "5:cpu,cpuacct:/else\n4:hugetlb,memory:/outer/inner\n"
                                    "1:name=systemd:/memory\n");
    root.write("/sys/fs/cgroup/memory/outer/inner/memory.limit_in_bytes", "9223372036854771712\n");
    root.write("/sys/fs/cgroup/memory/outer/inner/memory.usage_in_bytes", "700000\n");
    root.write("/sys/fs/cgroup/memory/outer/memory.limit_in_bytes", "3000000\n");
    root.write("/sys/fs/cgroup/memory/outer/memory.usage_in_bytes", "800000\n");
    root.write("/sys/fs/cgroup/memory/else/memory.limit_in_bytes", "10\n");
    root.write("/sys/fs/cgroup/memory/else/memory.usage_in_bytes", "5\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(2200000));
}

void tst_AvailableMemory::pagesOfFilesAreFree()
{
    const MadeRoot version2;
    version2.write("/proc/self/cgroup", "0::/a\n");
    version2.write("/sys/fs/cgroup/a/memory.max", "5000000\n");
    version2.write("/sys/fs/cgroup/a/memory.current", "4000000\n");
    version2.write("/sys/fs/cgroup/a/memory.stat",
                   "anon 1000000\nfile 3000000\nactive_file 500000\ninactive_file 2500000\n");
    QCOMPARE(groupMemory(version2.path()), std::optional<std::size_t>(3500000));
    const MadeRoot version1;
    version1.write("/proc/self/cgroup", "4:memory:/a\n");
    version1.write("/sys/fs/cgroup/memory/a/memory.limit_in_bytes", "5000000\n");
    version1.write("/sys/fs/cgroup/memory/a/memory.usage_in_bytes", "4000000\n");
    version1.write("/sys/fs/cgroup/memory/a/memory.stat",
                   "inactive_file 100000\ntotal_cache 2000000\ntotal_inactive_file 1500000\n");
    QCOMPARE(groupMemory(version1.path()), std::optional<std::size_t>(2500000));
}

void tst_AvailableMemory::moreUsedThanAllowed()
{
    const MadeRoot root;
    root.write("/proc/self/cgroup", "0::/a\n");
    root.write("/sys/fs/cgroup/a/memory.max", "5000000\n");
    root.write("/sys/fs/cgroup/a/memory.current", "5000001\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(0));
    // The two files are not of one moment.
    root.write("/sys/fs/cgroup/a/memory.stat", "inactive_file 6000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(5000000));
}

void tst_AvailableMemory::bothVersionsAtOnce()
{
    const MadeRoot root;
    root.write("/proc/self/cgroup", "4:memory:/a\n0::/a\n");
    root.write("/sys/fs/cgroup/memory/a/memory.limit_in_bytes", "5000000\n");
    root.write("/sys/fs/cgroup/memory/a/memory.usage_in_bytes", "1000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(4000000));
    root.write("/sys/fs/cgroup/a/memory.max", "2000000\n");
    root.write("/sys/fs/cgroup/a/memory.current", "1000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(1000000));
}

void tst_AvailableMemory::pathOfAnotherView()
{
    // A container sees the path that the machine around it gives the group, and in its own mount
    // the group itself at the root.
    const MadeRoot root;
    root.write("/proc/self/cgroup", "4:memory:/docker/0123abcd\n");
    root.write("/sys/fs/cgroup/memory/memory.limit_in_bytes", "3000000\n");
    root.write("/sys/fs/cgroup/memory/memory.usage_in_bytes", "1000000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(2000000));
}

void tst_AvailableMemory::pathOutOfTheMount()
{
    const MadeRoot root;
    root.write("/sys/fs/cgroup/memory.max", "3000000\n");
    root.write("/sys/fs/cgroup/memory.current", "1000000\n");
    root.write("/sys/fs/elsewhere/memory.max", "10\n");
    root.write("/sys/fs/elsewhere/memory.current", "5\n");
    for (const char* path : {"0::/../elsewhere\n", "0::/..\n", "0::/a/../../elsewhere\n"}) {
        root.write("/proc/self/cgroup", path);
        QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(2000000));
    }
}

void tst_AvailableMemory::nothingKnown()
{
    const MadeRoot root;
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>());
    root.write("/proc/self/cgroup", "0::/a\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>());
    root.write("/sys/fs/cgroup/a/memory.max", "max\n");
    root.write("/sys/fs/cgroup/a/memory.current", "1000\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>());
    root.write("/sys/fs/cgroup/memory.max", "5000\n"); // how much of it is used is not known
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>());
}

void tst_AvailableMemory::brokenFiles()
{
    const MadeRoot root;
    root.write("/sys/fs/cgroup/memory.max", "3000000\n");
    root.write("/sys/fs/cgroup/memory.current", "1000000\n");
    for (const char* groups : {"\n\n", ":", "0:memory", "x::/a\n", "memory\n:::\n"}) {
        root.write("/proc/self/cgroup", groups);
        QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>());
    }
    root.write("/proc/self/cgroup", "junk\n0::\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(2000000));
    root.write("/sys/fs/cgroup/memory.stat", "inactive_file\nanon x\ninactive_file 5\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>(2000000));
    root.write("/sys/fs/cgroup/memory.max", "many\n");
    QCOMPARE(groupMemory(root.path()), std::optional<std::size_t>());
    QVERIFY(availableMemory() > 0);
    QVERIFY(availableMemory() < unlimited); // a machine tells something of its memory
}

QTEST_APPLESS_MAIN(tst_AvailableMemory)
#include "tst_AvailableMemory.moc"
