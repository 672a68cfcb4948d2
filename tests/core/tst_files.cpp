// The temporary folder and the whole-file text routines: a private folder,
// never one that was open to others; table names that cannot reach outside
// it; links planted at a file's path replaced, never followed; text written
// and read back byte for byte.

#include "CoreTestSupport.h"
#include "core/document/TextFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>
#include <sys/stat.h>

using namespace fbtest;

namespace {

int modeOf(const QString& path)
{
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? int(st.st_mode & 07777) : -1;
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

} // namespace

// Each test works in a scratch folder of its own, through FIELDBRIDGE_TEMP
// pointing at a folder that does not exist yet.
class FilesTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> scratch;
    QString temp; // FIELDBRIDGE_TEMP, without the final "/"

private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }
    void init()
    {
        scratch = std::make_unique<QTemporaryDir>();
        QVERIFY(scratch->isValid());
        temp = scratch->path() + u"/export"_s;
        qputenv("FIELDBRIDGE_TEMP", QFile::encodeName(temp));
    }

    // Without FIELDBRIDGE_TEMP: a folder of this user's under the system's
    // temporary folder, mode 0700, the same every time; once it has been
    // open to others it is left alone and a fresh private folder serves.
    void privateFolderUnlessOpenToOthers()
    {
        qunsetenv("FIELDBRIDGE_TEMP");
        const QByteArray savedTmp = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(scratch->path()));
        const QString first = fb::TempFolder();
        const QString again = fb::TempFolder();
        const int mode = modeOf(first);
        QVERIFY(QFile::setPermissions(first, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                 QFile::ReadOther | QFile::WriteOther | QFile::ExeOther));
        const QString afterOpening = fb::TempFolder();
        qputenv("TMPDIR", savedTmp);
        QCOMPARE(QFileInfo(first.chopped(1)).canonicalPath(), QFileInfo(scratch->path()).canonicalFilePath());
        QCOMPARE(mode, 0700);
        QCOMPARE(again, first);
        QVERIFY(afterOpening != first);
        QCOMPARE(modeOf(afterOpening), 0700);
        QVERIFY(fb::WriteTextFile(afterOpening + u"klmno001.xml"_s, u"<x/>"_s));
        QCOMPARE(entriesOf(first), QStringList{});
    }

    // The temporary folder is made when it is missing (private); any other
    // missing folder is an error, and nothing is made in its place.
    void onlyTheTemporaryFolderIsMade_data()
    {
        QTest::addColumn<bool>("inTemp");
        QTest::newRow("the temporary folder") << true;
        QTest::newRow("another folder") << false;
    }
    void onlyTheTemporaryFolderIsMade()
    {
        QFETCH(bool, inTemp);
        const QString folder = inTemp ? temp : scratch->path() + u"/gone"_s;
        QString error;
        QCOMPARE(fb::WriteTextFile(folder + u"/klmno001.xml"_s, u"<x/>"_s, &error), inTemp);
        QCOMPARE(QFileInfo::exists(folder), inTemp);
        if (inTemp)
            QCOMPARE(modeOf(folder + u'/'), 0700);
        else
            QCOMPARE(error, u"The folder "_s + folder + u" does not exist"_s);
    }

    // Whatever the table name, its file lies directly in the folder; a name
    // that can be a plain file name keeps its form, blanks included.
    void tableFileNames_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("file");
        QTest::newRow("plain") << u"klmno001"_s << u"klmno001"_s;
        QTest::newRow("short, blanks kept") << u"abc     "_s << u"abc     "_s;
        QTest::newRow("dots alone") << u"..      "_s << u"..      "_s;
        QTest::newRow("two folders up") << u"../../x "_s << u"..%2F..%2Fx "_s;
        QTest::newRow("absolute") << u"/etc/x  "_s << u"%2Fetc%2Fx  "_s;
        QTest::newRow("control characters") << u"a\nb\tc\x7F  "_s << u"a%0Ab%09c%7F  "_s;
        QTest::newRow("letters beyond ASCII") << u"käseé  "_s << u"käseé  "_s;
    }
    void tableFileNames()
    {
        QFETCH(QString, table);
        QFETCH(QString, file);
        QCOMPARE(fb::TableFileName(table), file);
        QVERIFY(fb::WriteTextFile(fb::TempFilePath(table, u"Pre.qbx"_s), u"t"_s));
        QCOMPARE(entriesOf(temp), QStringList{file + u"Pre.qbx"_s});
        QCOMPARE(entriesOf(scratch->path()), QStringList{u"export"_s});
    }

    // The folder is made on the first write, private like the default one.
    void writtenExactlyAndReadBack_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("CR LF kept") << u"line 1\r\nline 2\r\n"_s;
        QTest::newRow("every script") << u"Ελληνικά Кириллица العربية 中文 한국어 📦𝄞"_s;
        QTest::newRow("leading U+FEFF is a character") << u"\uFEFFrule"_s;
        QTest::newRow("empty") << QString();
    }
    void writtenExactlyAndReadBack()
    {
        QFETCH(QString, text);
        const QString path = fb::TempFilePath(u"klmno001"_s, u"Rule.qbx"_s);
        QVERIFY(fb::WriteTextFile(path, u"a much longer earlier content"_s));
        QVERIFY(fb::WriteTextFile(path, text));
        QCOMPARE(modeOf(temp), 0700);
        bool ok = false;
        QCOMPARE(fb::ReadTextFile(path, &ok), text);
        QVERIFY(ok);
        QFile raw(path);
        QVERIFY(raw.open(QIODevice::ReadOnly));
        QCOMPARE(raw.readAll(), text.toUtf8());
    }

    // A replaced file keeps its mode (a file shared with a group stays
    // shared); a new one gets what the process's umask allows.
    void modeOfTheWrittenFile_data()
    {
        QTest::addColumn<int>("existing"); // -1: no file yet
        QTest::addColumn<int>("expected");
        QTest::newRow("new file") << -1 << (0666 & ~0027);
        QTest::newRow("group-readable file kept") << 0640 << 0640;
        QTest::newRow("world-readable file kept") << 0644 << 0644;
    }
    void modeOfTheWrittenFile()
    {
        QFETCH(int, existing);
        QFETCH(int, expected);
        const mode_t before = ::umask(0027);
        const QString path = scratch->path() + u"/shared.xml"_s;
        if (existing >= 0) {
            QVERIFY(fb::WriteTextFile(path, u"old"_s));
            QVERIFY(::chmod(QFile::encodeName(path).constData(), mode_t(existing)) == 0);
        }
        const bool written = fb::WriteTextFile(path, u"new"_s);
        ::umask(before);
        QVERIFY(written);
        QCOMPARE(modeOf(path), expected);
        QCOMPARE(fb::ReadTextFile(path), u"new"_s);
    }

    // A link planted at the path is never read as the file and is replaced
    // by the file on writing, whether its target exists or not.
    void plantedLinks_data()
    {
        QTest::addColumn<bool>("targetExists");
        QTest::newRow("to an existing file") << true;
        QTest::newRow("to a missing file") << false;
    }
    void plantedLinks()
    {
        QFETCH(bool, targetExists);
        const QString victim = scratch->path() + u"/victim"_s;
        if (targetExists)
            QVERIFY(fb::WriteTextFile(victim, u"precious"_s));
        const QString path = fb::TempFilePath(u"klmno001"_s, u".xml"_s);
        QVERIFY(QDir().mkpath(temp));
        QVERIFY(QFile::link(victim, path));
        bool ok = true;
        QCOMPARE(fb::ReadTextFile(path, &ok), QString());
        QVERIFY(!ok);

        QVERIFY(fb::WriteTextFile(path, u"<klmno001/>"_s));
        QVERIFY(!QFileInfo(path).isSymLink());
        QCOMPARE(fb::ReadTextFile(path), u"<klmno001/>"_s);
        QCOMPARE(QFileInfo::exists(victim), targetExists);
        if (targetExists)
            QCOMPARE(fb::ReadTextFile(victim), u"precious"_s);
    }
};

QTEST_APPLESS_MAIN(FilesTest)
#include "tst_files.moc"
