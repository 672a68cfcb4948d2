#pragma once

#include "Node.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace fb {

// The first failure recorded since the document object was created. Nothing
// in the control reads it; it is kept for diagnostics.
struct ErrorRecord {
    qint16 code = 0;
    QString text;
};

// Dumps referenced from the scripts: two parallel lists, numbers and the text
// the scan paired with each. An empty list is a single slot holding 0.
struct DumpReferences {
    QList<qint16> numbers{0};
    QStringList texts{QString()};

    bool isEmpty() const { return numbers.size() == 1 && numbers.first() == 0; }
    void clear()
    {
        numbers = {0};
        texts = {QString()};
    }
    bool contains(qint16 n) const { return numbers.contains(n); }
};

// A child of the root element as it stood at one moment, kept outside the
// document so that it can be put back (undo and redo). A copy of no element
// stands for an element that did not exist.
class SectionCopy {
public:
    bool exists() const;
    // The same content: the same markup once written out.
    bool operator==(const SectionCopy& other) const { return markup() == other.markup(); }
    QByteArray markup() const;

private:
    friend class MappingDocument;
    struct Data;
    std::shared_ptr<const Data> d;
    int position = -1; // among the root's child nodes
};

// The mapping object: one XML document owned for the control's whole life,
// the node access layer through which everything reaches it, and one
// accessor per section so that no other code builds a path.
//
// Paths are absolute: "/" + the 8-character document table name + "/" +
// section. The table name keeps its blanks, so a document whose root name is
// shorter than 8 characters has no reachable section.
class MappingDocument {
public:
    MappingDocument();
    ~MappingDocument();
    MappingDocument(const MappingDocument&) = delete;
    MappingDocument& operator=(const MappingDocument&) = delete;

    // ---- loading and saving ------------------------------------------------
    // Replaces the whole content. Text that is not well-formed (or has not
    // exactly one root element) records error 1 and leaves the document
    // empty; the call itself never fails.
    bool LoadXml(const QString& text);
    // Compact serialisation: no indentation added, no declaration added.
    QString Serialize() const;
    // The same text in UTF-8.
    QByteArray SerializeUtf8() const;
    // The text indented for people and diffs: elements that hold only
    // elements get one per line; no element that holds text changes, so
    // loading it again gives the same document.
    QString SerializeIndented() const;
    // The text, written at the same time, piece by piece, to the file as
    // WriteTextFile writes it (UTF-8): no whole copy of it in UTF-8 is made.
    // False in written (and the reason in error) when the file could not be
    // written; the text is returned all the same.
    QString SerializeToFile(const QString& path, bool* written, QString* error) const;
    bool IsEmpty() const;

    // ---- document table name ----------------------------------------------
    void SetTableName(const QString& name); // cut or blank-padded to 8
    const QString& TableName() const { return m_tableName; }
    QString SectionPath(const QString& section) const; // "/" + name + "/" + section

    // ---- error record -------------------------------------------------------
    void RecordError(qint16 code, const QString& text, qint16 fallbackCode, const QString& fallbackText);
    const ErrorRecord& LastError() const { return m_error; }

    // ---- node access layer --------------------------------------------------
    Node GetNode(const QString& path, const QString& attrName = QString(),
                 const QString& attrValue = QString());
    QString GetNodeText(const QString& path, const QString& attrName = QString(),
                        const QString& attrValue = QString());
    bool SetNodeText(const QString& path, const QString& text, const QString& attrName = QString(),
                     const QString& attrValue = QString());
    static QString GetNodeAttribute(const Node& node, const QString& name);
    bool SetNodeAttribute(const Node& node, const QString& name, const QString& value);
    bool RemoveAttribute(const Node& node, const QString& name);
    Node AppendChildElement(const Node& parent, const QString& name, const QString& attrName = QString(),
                            const QString& attrValue = QString());
    static QString UnescapeXmlText(const QString& text);
    // A stored text as a box or a grid cell shows it: each line break of the
    // stored text (LF, CR LF or a lone CR, as references may have put it
    // there) counts once, then UnescapeXmlText.
    static QString DisplayText(const QString& text);

    // Changes of nodes found through the layer above.
    bool SetText(const Node& node, const QString& text);
    bool RemoveChild(const Node& parent, const Node& child);
    void RemoveChildNodes(const Node& node);
    // Appends a deep copy of source (with all descendants and attributes).
    Node AppendCopy(const Node& parent, const Node& source);

    Node DocumentElement() const; // the root element, or no node
    Node FirstChild() const;      // the document's first child node, whatever its kind

    // A copy of the element (a child of the root, or no node), and putting
    // one back in place of the element that stands there now (or none): at
    // the position it was copied from, or where current stands. An absent
    // copy removes current. Returns the element put back.
    SectionCopy CopySection(const Node& element) const;
    Node RestoreSection(const SectionCopy& copy, const Node& current);
    // The first child of the root with this name (and attribute value), found
    // exactly and without recording anything: no node when there is none.
    Node RootChild(const QString& name, const QString& attrName = QString(),
                   const QString& attrValue = QString()) const;
    // The same for the sections that carry a key: a dump by its number, a
    // main query by its source table.
    Node DumpSection(qint16 number) const;
    Node QuerySection(const QString& source) const;

    // ---- section accessors --------------------------------------------------
    QString GetPreconditionText();
    bool SetPreconditionText(const QString& text); // false when PREC is missing: never created
    Node GetPreconditionNode();
    QString GetSourceTablesText();
    Node GetSourceTablesNode();
    // Sets the SRCTBL text, appending the element to the document element first
    // when it is missing.
    bool SetSourceTablesText(const QString& text);
    QString GetFunctionsText();
    bool SetFunctionsText(const QString& text);
    bool HasFunctions();
    bool HasVariables();
    QString GetVariablesText();
    bool SetVariablesText(const QString& text);
    QString GetQueryText(const QString& source);
    Node GetQueryNode(const QString& source);
    bool SaveQueryText(const QString& source, const QString& text);
    QList<Node> QueryNodes();
    Node GetMscriptNode();
    bool HasMscript();
    // Element names of MSCRIPT's children, in document order.
    QStringList MscriptTables();
    // SRCTAB/TARTAB definition of a table (name upper-cased), or no node.
    Node GetSourceTableNode(const QString& table);
    // The definitions of the tables listed in SRCTBL, in list order; tables
    // without a definition are left out.
    QList<Node> ListedSourceTables();
    Node GetTargetTableDefinition(const QString& table);

    // ---- dumps --------------------------------------------------------------
    Node GetDumpNode(qint16 number);
    Node CreateDumpNode(qint16 number);
    Node CreateDumpNode(qint16 number, const QString& text);
    QString GetDumpChildText(qint16 number, const QString& name);
    QList<Node> DumpNodes();
    // The target table a dump is bound to (TT), and binding it.
    static QString DumpTargetTable(const Node& dump);
    bool SetDumpTargetTable(const Node& dump, const QString& table);
    // The number (No) of a dump, a rule or a field element as a whole number,
    // and as it is written.
    static std::optional<qint16> ElementNo(const Node& element);
    static QString ElementNoText(const Node& element);
    // The source table (ST) a main query reads, and a dump's own description
    // (TXT).
    static QString QuerySource(const Node& query);
    static QString DumpDescription(const Node& dump);
    // The documentation text (TEXT) of PREC, a QUERY or a rule element:
    // whether there is one, what it says, setting and removing it.
    static bool HasDocText(const Node& element);
    static QString DocText(const Node& element);
    bool SetDocText(const Node& element, const QString& text);
    bool RemoveDocText(const Node& element);
    // Writes the rule of one field into a dump: into existing, the dump's
    // first element named like the field element, or into a new one (with an
    // empty TEXT) when there is none. Whoever made the element, once it holds
    // a rule it carries its field's No, and TYPE is "1" exactly when the text
    // as stored holds a line break.
    Node WriteRuleElement(const Node& dump, const Node& field, const QString& rule, const Node& existing);
    // Appends a new rule element for the field, also when one exists; with
    // a null rule the element stays empty.
    Node AppendRuleElement(const Node& dump, const Node& field, const QString& rule = QString());
    // The referenced-dump list and the dictionary of known dumps (number to
    // text), kept between calls and filled by the script scan.
    DumpReferences& ReferencedDumps() { return m_dumps; }
    const DumpReferences& ReferencedDumps() const { return m_dumps; }
    QHash<qint16, QString>& KnownDumps() { return m_knownDumps; }
    bool AddDumpReference(qint16 number, const QString& text);
    // Whether recording a reference creates the dump's element when it is
    // missing (it does; a scan that only looks turns it off for a while).
    void setCreatesReferencedDumps(bool on) { m_createsReferencedDumps = on; }

    // The migrate tables: the names that follow "migrate" in the precondition,
    // in order; always at least one slot, a single empty slot meaning none.
    QStringList& MigrateTables() { return m_migrateTables; }
    const QStringList& MigrateTables() const { return m_migrateTables; }
    bool HasMigrateTables() const
    {
        return !(m_migrateTables.size() == 1 && m_migrateTables.first().isEmpty());
    }

    // ---- target tables ------------------------------------------------------
    // The TARTAB child holding the fields being mapped. dumpNumber 0 = none
    // given; then the dump selector's tag (as text) decides, or, when it is
    // "", the first referenced dump.
    Node GetTargetTableNode(qint16 dumpNumber = 0, const QString& selectorTag = QString());
    static qint16 GetDependencyLevel(const Node& field);

    // ---- documentation text numbers -------------------------------------
    void SetTextNumber(const QString& type, qint32 number, const QString& key1, const QString& key2);
    void SetPreconditionTextNumber(qint32 number);
    void SetQueryTextNumber(qint32 number, const QString& key);
    void SetRuleTextNumber(qint32 number, qint16 dump, const QString& field);

    // ---- tidying ------------------------------------------------------------
    void RemoveQueriesNotIn(const QStringList& sources);
    void RemoveDumpsNotIn(const DumpReferences& dumps);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
    QString m_tableName;
    ErrorRecord m_error;
    DumpReferences m_dumps;
    QHash<qint16, QString> m_knownDumps;
    QStringList m_migrateTables{QString()};
    bool m_createsReferencedDumps = true;

    bool rootIsTheTable() const;
    Node appendToFirstChild(const QString& name, const QString& attrName = QString(),
                            const QString& attrValue = QString());
    bool setSectionText(const QString& section, const QString& text);
    Node findQueryExactly(const QString& source);
    // Sets an attribute without telling the root's index.
    bool setAttribute(const Node& node, const QString& name, const QString& value);
    void touchChildrenOf(pugi::xml_node_struct* node);
    // Why the lookup's expression is malformed, or a null text.
    QString expressionFailure(const QString& path, const QString& attrName, const QString& attrValue);
    void fillRule(const Node& element, const QString& rule);
};

// True when the text is a well-formed XML element name.
bool IsXmlName(const QString& name);

// Why LoadXml refuses a text, for a message a person can act on: the first
// fault of the XML with its line and column, or elements nested too deep. A
// null text when the XML itself is fine (then it is not one root element with
// nothing but markup around it).
QString DescribeMalformedXml(const QString& text);

} // namespace fb
