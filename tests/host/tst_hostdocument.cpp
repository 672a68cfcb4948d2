// The host's document session, headless: reading files, the source catalogue,
// the clean baseline, saving, and the recent files.
#include "HostDocument.h"

#include <QSettings>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString example(const QString& name)
{
    return QString::fromLocal8Bit(qgetenv("FIELDBRIDGE_EXAMPLES")) + u'/' + name;
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    QFile file(dir.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

} // namespace

class TestHostDocument : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    HostDocument m_document;

private Q_SLOTS:
    void initTestCase()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.filePath(u"settings"_s));
        QCoreApplication::setOrganizationName(u"FieldbridgeTests"_s);
    }
    void init()
    {
        m_document = HostDocument();
        m_document.clearRecentFiles();
    }

    void decodesFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("declarationRemoved");

        const QString body = u"<abcde001><PREC>Größe</PREC></abcde001>"_s;
        QTest::newRow("utf-8 without declaration") << body.toUtf8() << body << false;
        QTest::newRow("utf-8 with byte-order mark") << "\xEF\xBB\xBF" + body.toUtf8() << body << false;
        QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        QTest::newRow("utf-16 with byte-order mark") << QByteArray(utf16(body)) << body << false;
        QTest::newRow("declared latin-1, declaration left out")
            << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" + body.toLatin1() << body << true;
        QTest::newRow("declared in single quotes")
            << "<?xml version='1.0' encoding='UTF-8'?>" + body.toUtf8() << body << true;
        QTest::newRow("unknown encoding falls back to utf-8")
            << "<?xml version=\"1.0\" encoding=\"no-such-set\"?>\r\n" + body.toUtf8() << body << true;
        QTest::newRow("other processing instruction stays")
            << "<?xml-stylesheet href=\"a\"?>" + body.toUtf8() << u"<?xml-stylesheet href=\"a\"?>"_s + body
            << false;
    }
    void decodesFiles()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QFETCH(bool, declarationRemoved);

        const HostDocument::Decoded decoded = HostDocument::decode(bytes);
        QCOMPARE(decoded.text, text);
        QCOMPARE(decoded.declarationRemoved, declarationRemoved);
    }

    void opensWhatTheControlTakes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("failure"); // a part of the reason; empty when the file opens
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<QStringList>("someFields");

        QTest::newRow("single target") << example(u"klmno001.xml"_s) << QString()
                                       << QStringList{u"PQRST002"_s, u"UVWXY003"_s, u"ABCDE004"_s}
                                       << QStringList{u"pqrst002.custno"_s, u"pqrst002.note(2)"_s};
        QTest::newRow("multi target") << example(u"fghij100.xml"_s) << QString()
                                      << QStringList{u"LMNOP010"_s, u"RSTUV020"_s, u"HIJKL030"_s}
                                      << QStringList{u"lmnop010.item"_s, u"hijkl030.price"_s};
        QTest::newRow("field names in the control's form")
            << writeFile(m_dir, u"abcde001.xml"_s,
                         "<abcde001><SRCTAB><ABCDE002><QTY__12/><A__B__C/></ABCDE002></SRCTAB></abcde001>")
            << QString() << QStringList{u"ABCDE002"_s}
            << QStringList{u"abcde002.qty(12)"_s, u"abcde002.a(b(c)"_s};
        QTest::newRow("missing file") << m_dir.filePath(u"none.xml"_s) << u"Cannot read"_s;
        QTest::newRow("unclosed root") << writeFile(m_dir, u"open.xml"_s, "<abcde001>\n<PREC>x</PREC>")
                                       << u"open.xml is not a well-formed mapping object:\n"_s;
        QTest::newRow("crossed elements, where")
            << writeFile(m_dir, u"crossed.xml"_s, "<a>\n<b><c></b></c></a>") << u"(line 2, column"_s;
        QTest::newRow("empty file") << writeFile(m_dir, u"empty.xml"_s, "") << u"not a well-formed"_s;
    }
    void opensWhatTheControlTakes()
    {
        QFETCH(QString, path);
        QFETCH(QString, failure);

        QString error;
        QVERIFY(m_document.open(example(u"klmno001.xml"_s), &error));
        const QString before = m_document.text();
        QCOMPARE(m_document.open(path, &error), failure.isEmpty());
        if (!failure.isEmpty()) {
            QVERIFY2(error.contains(failure), qPrintable(error));
            QCOMPARE(m_document.path(), example(u"klmno001.xml"_s));
            QCOMPARE(m_document.text(), before);
            QCOMPARE(m_document.recentFiles(), QStringList{example(u"klmno001.xml"_s)});
            return;
        }
        QFETCH(QStringList, tables);
        QFETCH(QStringList, someFields);
        // The files are named after their root element.
        QCOMPARE(m_document.catalogue().rootName, QFileInfo(path).completeBaseName());
        QStringList names;
        QStringList fields;
        for (const MappingFile::SourceTable& table : m_document.catalogue().sourceTables) {
            names.append(table.name);
            for (const MappingFile::SourceField& field : table.fields)
                fields.append(field.qualifiedName);
        }
        QCOMPARE(names, tables);
        for (const QString& field : someFields)
            QVERIFY2(fields.contains(field), qPrintable(fields.join(u' ')));
        QCOMPARE(m_document.recentFiles().value(0), path);
    }

    void savesAndKeepsTheBaseline_data()
    {
        QTest::addColumn<bool>("sample");
        QTest::addColumn<QString>("target"); // file name in the scratch folder
        QTest::addColumn<bool>("saved");

        QTest::newRow("file saved in place") << false << u"doc.xml"_s << true;
        QTest::newRow("file saved as another") << false << u"copy.xml"_s << true;
        QTest::newRow("untitled sample saved") << true << u"sample.xml"_s << true;
        QTest::newRow("missing folder") << false << u"no/such/doc.xml"_s << false;
    }
    void savesAndKeepsTheBaseline()
    {
        QFETCH(bool, sample);
        QFETCH(QString, target);
        QFETCH(bool, saved);

        QTemporaryDir dir;
        const QString original = writeFile(dir, u"doc.xml"_s, "<?xml version=\"1.0\"?><abcde001/>");
        QString error;
        QVERIFY(sample ? m_document.openSample(&error) : m_document.open(original, &error));
        const QString name = m_document.displayName();
        m_document.setBaseline(u"<abcde001/>"_s);
        QVERIFY(!m_document.isModified(u"<abcde001/>"_s));
        QVERIFY(m_document.isModified(u"<abcde001><PREC/></abcde001>"_s));

        const QString path = dir.filePath(target);
        QCOMPARE(m_document.save(u"<abcde001><PREC/></abcde001>"_s, path, &error), saved);
        QCOMPARE(error.isEmpty(), saved);
        QCOMPARE(m_document.isModified(u"<abcde001><PREC/></abcde001>"_s), !saved);
        QCOMPARE(m_document.cleanText(), saved ? u"<abcde001><PREC/></abcde001>"_s : u"<abcde001/>"_s);
        QCOMPARE(m_document.path(), saved ? path : (sample ? QString() : original));
        QCOMPARE(m_document.displayName(), saved ? QFileInfo(path).fileName() : name);
        // Written indented for review; a file replaced keeps its old content
        // beside it.
        QFile file(path);
        QCOMPARE(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray(),
                 saved ? "<abcde001>\n  <PREC />\n</abcde001>\n"_ba : QByteArray());
        QFile backup(HostDocument::backupPath(path));
        QCOMPARE(backup.open(QIODevice::ReadOnly) ? backup.readAll() : QByteArray(),
                 saved && path == original ? "<?xml version=\"1.0\"?><abcde001/>"_ba : QByteArray());
    }

    void remembersRecentFiles_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("recent");

        QTest::newRow("newest first, opened again moves up")
            << u"open 1, open 2, open 3, open 1"_s << u"1 3 2"_s;
        QTest::newRow("saving counts") << u"open 1, save 2"_s << u"2 1"_s;
        QTest::newRow("eight at most")
            << u"open 1, open 2, open 3, open 4, open 5, open 6, open 7, open 8, open 9"_s
            << u"9 8 7 6 5 4 3 2"_s;
        QTest::newRow("forgotten") << u"open 1, open 2, forget 1"_s << u"2"_s;
        QTest::newRow("cleared") << u"open 1, clear"_s << QString();
    }
    void remembersRecentFiles()
    {
        QFETCH(QString, steps);
        QFETCH(QString, recent);

        QTemporaryDir dir;
        for (const QString& step : steps.split(u", "_s)) {
            const QString verb = step.section(u' ', 0, 0);
            const QString file = dir.filePath(step.section(u' ', 1) + u".xml"_s);
            QString error;
            if (verb == u"open")
                QVERIFY(m_document.open(writeFile(dir, QFileInfo(file).fileName(), "<abcde001/>"), &error));
            else if (verb == u"save")
                QVERIFY(m_document.save(u"<abcde001/>"_s, file, &error));
            else if (verb == u"forget")
                m_document.forgetRecentFile(file);
            else
                m_document.clearRecentFiles();
        }
        QStringList expected;
        for (const QString& n : recent.split(u' ', Qt::SkipEmptyParts))
            expected.append(dir.filePath(n + u".xml"_s));
        QCOMPARE(HostDocument().recentFiles(), expected);
    }
};

QTEST_GUILESS_MAIN(TestHostDocument)
#include "tst_hostdocument.moc"
