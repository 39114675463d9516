#include "batch/Digest.h"
#include "batch/FileDigests.h"
#include "batch/SourceFile.h"
#include "system/Workers.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/Files.h"

#include <QTemporaryDir>
#include <QtTest>

/// SHA-256, against the examples of FIPS 180-2, and what a file's digest is made of.
class tst_Digest : public QObject
{
    Q_OBJECT
private slots:
    void known_data();
    void known();
    void piecesMakeTheWhole();
    void largeFileIsReadInPieces();
    void unreadableHasNone();
    void textsAreKeptApart();
    void sourceKeepsTheBytesItRead();
    void largeSourceTellsThatItChanged();
    void whyThereIsNoSource();
    void sharedFilesAreReadOnce();
    void sharedFilesOfManyThreads();
};

void tst_Digest::known_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("digest");
    QTest::newRow("one block") << QByteArray("abc")
                               << QByteArray("ba7816bf8f01cfea414140de5dae2223"
                                             "b00361a396177a9cb410ff61f20015ad");
    QTest::newRow("two blocks") << QByteArray(
                                       "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")
                                << QByteArray("248d6a61d20638b8e5c026930c3e6039"
                                              "a33ce45964ff2167f6ecedd419db06c1");
    QTest::newRow("a million") << QByteArray(1000000, 'a')
                               << QByteArray("cdc76e5c9914fb9281a1c7e284d73e67"
                                             "f1809a48a497200e046d39ccc7112cd0");
}

void tst_Digest::known()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, digest);
    QCOMPARE(toBytes(digestOf(text)).toHex(), digest);
    const auto back = fromBytes(QByteArray::fromHex(digest));
    QVERIFY(back && *back == digestOf(text));
    QVERIFY(!fromBytes(digest));
    QVERIFY(!fromBytes({}));
}

void tst_Digest::piecesMakeTheWhole()
{
    Hasher hasher;
    hasher.add(QByteArray("a"));
    hasher.add("bc", 2);
    QVERIFY(hasher.digest() == digestOf("abc"));
    hasher.add(QByteArray("abc")); // begins anew
    QVERIFY(hasher.digest() == digestOf("abc"));
}

void tst_Digest::largeFileIsReadInPieces()
{
    const QByteArray text(1000000, 'a');
    QVERIFY(digestOf(ArrayBytes(text)) == digestOf(text));
}

void tst_Digest::unreadableHasNone()
{
    const QByteArray text(1000000, 'a');
    QVERIFY(!digestOf(ArrayBytes(text, 500000)));
}

void tst_Digest::textsAreKeptApart()
{
    Hasher one;
    one.addText("ab");
    one.addText("c");
    Hasher other;
    other.addText("a");
    other.addText("bc");
    QVERIFY(one.digest() != other.digest());
}

// A file that is rewritten while it is analysed: the digest is that of what was analysed.
void tst_Digest::sourceKeepsTheBytesItRead()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scan.dat"));
    create(path, "abc");
    QString why;
    const auto source = SourceFile::open(path, why);
    QVERIFY(source);
    create(path, "xyz");
    QVERIFY(source->digest() == digestOf("abc"));
    QVERIFY(source->isStill(digestOf("abc")));
    QByteArray read(3, ' ');
    QVERIFY(source->bytes().read(read.data(), 3, 0));
    QCOMPARE(read, QByteArray("abc"));
}

void tst_Digest::largeSourceTellsThatItChanged()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scan.dat"));
    const QByteArray text(static_cast<int>(SourceFile::largestHeld) + 1, 'a');
    create(path, text);
    QString why;
    const auto source = SourceFile::open(path, why);
    QVERIFY(source);
    const auto digest = source->digest();
    QVERIFY(digest && *digest == digestOf(text));
    QVERIFY(source->isStill(*digest));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(text.size() - 1) && file.putChar('b'));
    file.close();
    QVERIFY(!source->isStill(*digest));
}

void tst_Digest::whyThereIsNoSource()
{
    QString why;
    QVERIFY(!SourceFile::open(QStringLiteral("/no such file"), why));
    QCOMPARE(why, QStringLiteral("there is no such file"));
    QVERIFY(!SourceFile::open(QStringLiteral("/"), why));
    QCOMPARE(why, QStringLiteral("it is a folder"));
}

/// A change is told from the state of a file: the same state is the same digest, whatever is in it.
void tst_Digest::sharedFilesAreReadOnce()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("stack.h5"));
    FileDigests digests;
    QVERIFY(!digests.of(path));
    create(path, "abc");
    QVERIFY(!digests.isStill(path));
    QVERIFY(digests.of(path) == digestOf("abc"));
    QVERIFY(digests.isStill(path));
    QVERIFY(digests.of(path) == digestOf("abc"));
    create(path, "abcd");
    QVERIFY(!digests.isStill(path));
    QVERIFY(digests.of(path) == digestOf("abcd"));
    QVERIFY(digests.isStill(path));
    QVERIFY(QFile::remove(path));
    QVERIFY(!digests.isStill(path));
    QVERIFY(!digests.of(path));
    QVERIFY(digests.isStill(path)); // it is as it was: not there
}

void tst_Digest::sharedFilesOfManyThreads()
{
    const QTemporaryDir dir;
    const QString paths[] = {dir.filePath(QStringLiteral("a")), dir.filePath(QStringLiteral("b"))};
    create(paths[0], QByteArray(1000000, 'a'));
    create(paths[1], "abc");
    FileDigests digests;
    Workers workers(8);
    std::array<std::optional<Digest>, 64> found;
    workers.run(found.size(),
                [&](std::size_t i, unsigned) { found[i] = digests.of(paths[i % 2]); });
    for (std::size_t i = 0; i < found.size(); ++i)
        QVERIFY(found[i] == digestOf(i % 2 == 0 ? QByteArray(1000000, 'a') : QByteArray("abc")));
}

QTEST_GUILESS_MAIN(tst_Digest)
#include "tst_Digest.moc"
