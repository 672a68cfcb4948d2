// The index over the root's children against the plain walk it replaces:
// after every kind of change the document makes, a section found by name,
// or by name and attribute, is the first child the walk finds, or none.

#include "CoreTestSupport.h"

#include <random>

using namespace fbtest;

namespace {

// The first child of the root with that name (and attribute value), by
// walking the children in order.
fb::Node walk(fb::MappingDocument& doc, const QString& name, const QString& attr, const QString& value)
{
    for (fb::Node c = doc.DocumentElement().firstChildElement(); c; c = c.nextSiblingElement())
        if (c.name() == name && (attr.isEmpty() || (c.hasAttribute(attr) && c.attribute(attr) == value)))
            return c;
    return fb::Node();
}

} // namespace

class RootIndexTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }

    void lookupsFollowEveryChange_data()
    {
        QTest::addColumn<int>("seed");
        for (int seed = 1; seed <= 20; ++seed)
            QTest::newRow(qPrintable(u"seed %1"_s.arg(seed))) << seed;
    }
    void lookupsFollowEveryChange()
    {
        QFETCH(int, seed);
        std::mt19937 rng{quint32(seed)};
        const auto pick = [&rng](int n) { return int(rng() % quint32(n)); };
        const QStringList sections{u"DUMP"_s, u"QUERY"_s, u"FUNCTIONS"_s, u"VAR"_s, u"PREC"_s};
        const QStringList attrs{u"No"_s, u"ST"_s};
        const QStringList values{u"1"_s, u"2"_s, u"3"_s, u"01"_s, u""_s};

        fb::MappingDocument doc;
        QVERIFY(
            load(doc, wrapped(u"<DUMP No=\"1\"/><QUERY ST=\"2\">q</QUERY><DUMP No=\"1\">second</DUMP>"_s)));
        QList<fb::SectionCopy> copies;
        for (int step = 0; step < 200; ++step) {
            const QString name = sections[pick(int(sections.size()))];
            const QString attr = attrs[pick(int(attrs.size()))];
            const QString value = values[pick(int(values.size()))];
            fb::Node existing = walk(doc, name, QString(), QString());
            switch (pick(7)) {
            case 0:
                doc.AppendChildElement(doc.DocumentElement(), name, attr, value);
                break;
            case 1:
                doc.RemoveChild(doc.DocumentElement(), existing);
                break;
            case 2:
                doc.SetNodeAttribute(existing, attr, value);
                break;
            case 3:
                doc.RemoveAttribute(existing, attr);
                break;
            case 4:
                copies.append(doc.CopySection(existing));
                break;
            case 5:
                if (!copies.isEmpty())
                    doc.RestoreSection(copies[pick(int(copies.size()))], pick(2) ? existing : fb::Node());
                break;
            default:
                doc.CreateDumpNode(qint16(1 + pick(3)));
                break;
            }
            // Every lookup, by the index and by the walk.
            for (const QString& n : sections) {
                const QString path = doc.SectionPath(n);
                QVERIFY2(doc.GetNode(path) == walk(doc, n, {}, {}),
                         qPrintable(u"step %1 %2"_s.arg(step).arg(n)));
                for (const QString& a : attrs)
                    for (const QString& v : values)
                        if (!v.isEmpty())
                            QVERIFY2(doc.GetNode(path, a, v) == walk(doc, n, a, v),
                                     qPrintable(u"step %1 %2[@%3='%4']"_s.arg(step).arg(n, a, v)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(RootIndexTest)
#include "tst_rootindex.moc"
