// The fixed temporary folder and the whole-file text routines.

#include "TestSupport.h"

#include "document/TextFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using fb::test::RowName;

namespace {

// Runs each test with its own scratch TMPDIR and FIELDBRIDGE_TEMP unset, and
// puts both variables back afterwards.
class TempFolderEnv : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(scratch.isValid());
        savedTmp = qgetenv("TMPDIR");
        hadTmp = qEnvironmentVariableIsSet("TMPDIR");
        savedTemp = qgetenv("FIELDBRIDGE_TEMP");
        hadTemp = qEnvironmentVariableIsSet("FIELDBRIDGE_TEMP");
        qputenv("TMPDIR", QFile::encodeName(scratch.path()));
        qunsetenv("FIELDBRIDGE_TEMP");
    }
    void TearDown() override
    {
        if (hadTmp)
            qputenv("TMPDIR", savedTmp);
        else
            qunsetenv("TMPDIR");
        if (hadTemp)
            qputenv("FIELDBRIDGE_TEMP", savedTemp);
        else
            qunsetenv("FIELDBRIDGE_TEMP");
    }

    static int modeOf(const QString& path)
    {
        struct stat st {};
        if (::stat(QFile::encodeName(path).constData(), &st) != 0)
            return -1;
        return int(st.st_mode & 07777);
    }

    QTemporaryDir scratch;
    QByteArray savedTmp;
    QByteArray savedTemp;
    bool hadTmp = false;
    bool hadTemp = false;
};

TEST_F(TempFolderEnv, PrivateFolderUnderTheSystemTemporaryFolder)
{
    const QString folder = fb::TempFolder();
    EXPECT_TRUE(folder.endsWith(u'/'));
    EXPECT_TRUE(folder.startsWith(QDir(scratch.path()).canonicalPath() + u'/') ||
                folder.startsWith(scratch.path() + u'/'))
        << folder.toStdString();
    EXPECT_TRUE(QDir(folder).exists());
    EXPECT_EQ(modeOf(folder), 0700);
    EXPECT_EQ(fb::TempFolder(), folder) << "the same folder every time";
}

TEST_F(TempFolderEnv, ExistingOpenFolderOfOurOwnIsClosed)
{
    const QString first = fb::TempFolder();
    ASSERT_EQ(::chmod(QFile::encodeName(first).constData(), 0755), 0);
    const QString again = fb::TempFolder();
    EXPECT_EQ(again, first);
    EXPECT_EQ(modeOf(again), 0700);
}

TEST_F(TempFolderEnv, ConfiguredFolderIsUsedAndCreatedOnWrite)
{
    const QString configured = scratch.path() + QStringLiteral("/export");
    qputenv("FIELDBRIDGE_TEMP", QFile::encodeName(configured));
    EXPECT_EQ(fb::TempFolder(), configured + u'/');
    EXPECT_FALSE(QDir(configured).exists());
    const QString file = fb::TempFolder() + QStringLiteral("klmno001.xml");
    QString error;
    EXPECT_TRUE(fb::WriteTextFile(file, QStringLiteral("<klmno001/>"), &error)) << error.toStdString();
    EXPECT_EQ(fb::ReadTextFile(file), QStringLiteral("<klmno001/>"));
}

TEST_F(TempFolderEnv, WriteCreatesTheMissingPrivateFolder)
{
    const QString folder = fb::TempFolder();
    ASSERT_TRUE(QDir(folder).removeRecursively());
    const QString file = folder + QStringLiteral("klmno001.xml");
    EXPECT_TRUE(fb::WriteTextFile(file, QStringLiteral("x")));
    EXPECT_EQ(fb::ReadTextFile(file), QStringLiteral("x"));
    EXPECT_EQ(modeOf(folder), 0700);
}

struct FileRow : fb::test::Row {
    QString fileName;
    QString text;
};

class TextFileRoundTrip : public TempFolderEnv, public ::testing::WithParamInterface<FileRow> {};

TEST_P(TextFileRoundTrip, WritesExactlyTheTextAndReadsItBack)
{
    const FileRow& row = GetParam();
    const QString path = fb::TempFolder() + row.fileName;
    ASSERT_TRUE(fb::WriteTextFile(path, row.text));
    EXPECT_TRUE(QDir(fb::TempFolder()).entryList(QDir::Files).contains(row.fileName)) << "name kept as given";
    EXPECT_EQ(fb::ReadTextFile(path), row.text);
    QFile raw(path);
    ASSERT_TRUE(raw.open(QIODevice::ReadOnly));
    EXPECT_EQ(raw.readAll(), row.text.toUtf8()) << "nothing added, line ends kept";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextFileRoundTrip,
    ::testing::Values(
        FileRow{"export", QStringLiteral("klmno001.xml"), QStringLiteral("<klmno001><PREC>p</PREC></klmno001>")},
        FileRow{"short_table_name_keeps_blanks", QStringLiteral("abc     .xml"), QStringLiteral("<abc/>")},
        FileRow{"script_with_crlf", QStringLiteral("klmno001Rule.qbx"), QStringLiteral("line 1\r\nline 2\r\n")},
        FileRow{"non_latin", QStringLiteral("klmno001MQ.qbx"),
                QStringLiteral("Ελληνικά Кириллица العربية 中文 한국어 📦𝄞")},
        FileRow{"empty", QStringLiteral("klmno001Pre.qbx"), QString()}),
    RowName());

TEST_F(TempFolderEnv, WriteReplacesTheWholeFile)
{
    const QString path = fb::TempFolder() + QStringLiteral("klmno001.xml");
    ASSERT_TRUE(fb::WriteTextFile(path, QStringLiteral("a much longer first content")));
    ASSERT_TRUE(fb::WriteTextFile(path, QStringLiteral("short")));
    EXPECT_EQ(fb::ReadTextFile(path), QStringLiteral("short"));
}

TEST_F(TempFolderEnv, MissingFileReadsAsEmpty)
{
    EXPECT_EQ(fb::ReadTextFile(fb::TempFolder() + QStringLiteral("nosuch.qbx")), QString());
}

TEST_F(TempFolderEnv, UnwritablePlaceIsReportedNotThrown)
{
    const QString blocker = scratch.path() + QStringLiteral("/plainfile");
    ASSERT_TRUE(fb::WriteTextFile(blocker, QStringLiteral("x")));
    QString error;
    EXPECT_FALSE(fb::WriteTextFile(blocker + QStringLiteral("/inside.xml"), QStringLiteral("y"), &error));
    EXPECT_FALSE(error.isEmpty());
}

} // namespace
