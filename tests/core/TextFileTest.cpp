// The fixed temporary folder and the whole-file text routines.

#include "TestSupport.h"

#include "core/document/TextFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

// A folder of ours that was ever open to others may hold what was planted in
// it meanwhile: it is left alone, and a fresh private folder serves instead.
TEST_F(TempFolderEnv, OpenFolderOfOurOwnIsNotTrusted)
{
    const QString first = fb::TempFolder();
    ASSERT_EQ(::chmod(QFile::encodeName(first).constData(), 0777), 0);
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc/hostname"), first + QStringLiteral("klmno001.xml")));
    const QString again = fb::TempFolder();
    EXPECT_NE(again, first);
    EXPECT_EQ(modeOf(again), 0700);
    EXPECT_EQ(modeOf(first), 0777) << "left as it was found";
    EXPECT_TRUE(fb::WriteTextFile(again + QStringLiteral("klmno001.xml"), QStringLiteral("<x/>")));
}

// Whatever the table name, its files lie directly in the temporary folder; a
// name that can be a plain file name keeps its form, blanks included.
struct NameRow : fb::test::Row {
    QString table;
    QString fileName;
};

class TableNames : public TempFolderEnv, public ::testing::WithParamInterface<NameRow> {};

TEST_P(TableNames, FilesStayDirectlyInTheTemporaryFolder)
{
    const NameRow& row = GetParam();
    EXPECT_EQ(fb::TableFileName(row.table), row.fileName);
    for (const QString& suffix : {QStringLiteral(".xml"), QStringLiteral("Pre.qbx")}) {
        const QString path = fb::TempFilePath(row.table, suffix);
        ASSERT_TRUE(fb::WriteTextFile(path, QStringLiteral("t")));
        EXPECT_EQ(QFileInfo(path).absolutePath() + u'/', fb::TempFolder());
        EXPECT_EQ(QDir(fb::TempFolder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                  QStringList{row.fileName + suffix});
        QFile::remove(path);
    }
    EXPECT_EQ(QDir(scratch.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1)
        << "nothing beside the temporary folder";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TableNames,
    ::testing::Values(NameRow{{"Plain"}, QStringLiteral("klmno001"), QStringLiteral("klmno001")},
                      NameRow{{"ShortKeepsItsBlanks"}, QStringLiteral("abc     "), QStringLiteral("abc     ")},
                      NameRow{{"DotsAlone"}, QStringLiteral("..      "), QStringLiteral("..      ")},
                      NameRow{{"TwoFoldersUp"}, QStringLiteral("../../x "), QStringLiteral("..%2F..%2Fx ")},
                      NameRow{{"FoldersOutside"}, QStringLiteral("../a/b/c"), QStringLiteral("..%2Fa%2Fb%2Fc")},
                      NameRow{{"SubFolder"}, QStringLiteral("a/b     "), QStringLiteral("a%2Fb     ")},
                      NameRow{{"Absolute"}, QStringLiteral("/etc/x  "), QStringLiteral("%2Fetc%2Fx  ")},
                      NameRow{{"ControlCharacters"}, QStringLiteral("a\nb\tc\x7F  "),
                              QStringLiteral("a%0Ab%09c%7F  ")},
                      NameRow{{"Unicode"}, QStringLiteral("käse\u00e9  "), QStringLiteral("käse\u00e9  ")}),
    RowName());

// A link planted at a file's path is replaced by the file, never written
// through, whether it points to an existing file or to a missing one; and a
// link is never read as the file.
struct LinkRow : fb::test::Row {
    bool targetExists;
};

class PlantedLinks : public TempFolderEnv, public ::testing::WithParamInterface<LinkRow> {};

TEST_P(PlantedLinks, AreReplacedNeverFollowed)
{
    const QString victim = scratch.path() + QStringLiteral("/victim");
    if (GetParam().targetExists) {
        ASSERT_TRUE(fb::WriteTextFile(victim, QStringLiteral("precious")));
    }
    const QString path = fb::TempFilePath(QStringLiteral("klmno001"), QStringLiteral(".xml"));
    ASSERT_TRUE(QFile::link(victim, path));
    bool ok = true;
    EXPECT_EQ(fb::ReadTextFile(path, &ok), QString());
    EXPECT_FALSE(ok) << "a link is not read as the file";

    ASSERT_TRUE(fb::WriteTextFile(path, QStringLiteral("<klmno001/>")));
    EXPECT_FALSE(QFileInfo(path).isSymLink());
    EXPECT_EQ(fb::ReadTextFile(path, &ok), QStringLiteral("<klmno001/>"));
    EXPECT_TRUE(ok);
    EXPECT_EQ(QFileInfo::exists(victim), GetParam().targetExists);
    if (GetParam().targetExists) {
        EXPECT_EQ(fb::ReadTextFile(victim), QStringLiteral("precious"));
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, PlantedLinks,
                         ::testing::Values(LinkRow{{"ToAnExistingFile"}, true}, LinkRow{{"ToAMissingFile"}, false}),
                         RowName());

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
        FileRow{"leading_feff_is_a_character", QStringLiteral("klmno001var.qbx"), QStringLiteral("\uFEFFrule")},
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
