// What the consultant works with beside the described commands: the lists
// narrowed by find boxes and by "unmapped only", the coverage of each dump,
// the marks of mapped and open mandatory fields, and the checks, which run a
// few dumps at a time between the user's keystrokes.

#include "FieldMarks.h"
#include "MappingSession.h"
#include "core/document/TextRules.h"

#include <QElapsedTimer>

namespace fb {

namespace {
// How long one round of checking may take, and the pause before the next,
// in which the user's events come first.
constexpr qint64 kCheckSliceMs = 4;
constexpr int kCheckPauseMs = 15;
// Typing in the grid waits this long before its dump is checked again.
constexpr int kRecheckDelayMs = 250;
} // namespace

void MappingSession::setUpWorkbench()
{
    m_sourceFilter.setSourceModel(&m_sourceFields);
    m_targetFilter.setSourceModel(&m_targetFields);
    m_rulesFilter.setSourceModel(&m_rules);
    m_targetFields.setMarkSource([this](const FieldRow& row) {
        const int r = m_rules.rowOf(row.name);
        if (r >= 0 && m_rules.hasRule(r))
            return int(FieldMark::Mapped);
        return int(row.mandatory.isEmpty() ? FieldMark::None : FieldMark::MandatoryOpen);
    });
    connect(&m_rules, &QAbstractItemModel::dataChanged, this, &MappingSession::rulesChanged);
    connect(&m_rules, &QAbstractItemModel::modelReset, this, &MappingSession::rulesChanged);
    m_checkTimer.setSingleShot(true);
    connect(&m_checkTimer, &QTimer::timeout, this, &MappingSession::checkSome);
}

void MappingSession::rulesChanged()
{
    m_targetFields.marksChanged();
    Q_EMIT coverageChanged();
    // The dump being edited is checked again once the typing pauses.
    if (const qint16 number = str::ToInteger(m_tag).value_or(0);
        number > 0 && m_checkedDumps.contains(number))
        scheduleDumpCheck(number, kRecheckDelayMs);
}

// ---- narrowing the lists ----------------------------------------------------------

void MappingSession::setUnmappedOnly(bool on)
{
    m_unmappedOnly = on;
    if (!on) {
        m_targetFilter.setRowTest({});
        m_rulesFilter.setRowTest({});
        return;
    }
    // The row being worked on stays in view while it gets its rule.
    m_targetFilter.setRowTest([this](int row) {
        return row == m_targetSelected || !m_rules.hasRule(m_rules.rowOf(m_targetFields.cellText(row, 3)));
    });
    m_rulesFilter.setRowTest([this](int row) { return row == m_gridRow || !m_rules.hasRule(row); });
}

// ---- coverage ---------------------------------------------------------------------

Coverage MappingSession::coverage() const
{
    Coverage c;
    c.fields = m_rules.rowCount();
    for (int r = 0; r < c.fields; ++r) {
        const bool ruled = m_rules.hasRule(r);
        c.withRule += ruled ? 1 : 0;
        c.mandatoryOpen += !ruled && m_rules.isMandatory(r) ? 1 : 0;
    }
    return c;
}

QString MappingSession::coverageText() const
{
    if (m_tag.isEmpty() || m_rules.rowCount() == 0)
        return QString();
    return QStringLiteral("Dump ") + m_tag + QStringLiteral(": ") + CoverageText(coverage());
}

QString MappingSession::dumpCoverageToolTip(int entry)
{
    if (entry < 0 || entry >= m_dumpNumbers.size())
        return QString();
    const qint16 number = m_dumpNumbers[entry];
    // The dump in the grid counts what the grid holds, stored or not.
    const Coverage c =
        number == str::ToInteger(m_tag).value_or(0) && m_rules.rowCount() > 0
            ? coverage()
            : CoverageOf(TargetFieldsOf(m_doc.GetTargetTableNode(number)), RulesOfDump(m_doc, number));
    return QStringLiteral("Dump ") + QString::number(number) + QStringLiteral(": ") + CoverageText(c);
}

// ---- checks -----------------------------------------------------------------------

const SourceCatalogue& MappingSession::sourceCatalogue()
{
    const QString listed = m_doc.GetSourceTablesText();
    if (!m_catalogue || listed != m_catalogueOf) {
        m_catalogue.emplace(m_doc);
        m_catalogueOf = listed;
    }
    return *m_catalogue;
}

const QList<TargetField>& MappingSession::targetFieldsOf(qint16 dump)
{
    const Node table = m_doc.GetTargetTableNode(dump);
    const QString name = table.name();
    auto it = m_targetFieldsCache.find(name);
    if (it == m_targetFieldsCache.end())
        it = m_targetFieldsCache.insert(name, TargetFieldsOf(table));
    return *it;
}

void MappingSession::scheduleChecks(CheckScope scope)
{
    // The work itself waits for the event loop: loading and switching tabs
    // do not wait for it.
    m_checkSections = true;
    m_checkEverything = m_checkEverything || scope == CheckScope::Everything;
    if (!m_checkTimer.isActive())
        m_checkTimer.start(0);
}

void MappingSession::scheduleDumpCheck(qint16 number, int delayMs)
{
    if (!m_checkQueue.contains(number))
        m_checkQueue.prepend(number);
    if (!m_checkTimer.isActive())
        m_checkTimer.start(delayMs);
}

void MappingSession::checkSome()
{
    QElapsedTimer clock;
    clock.start();
    if (m_checkSections) {
        // The scripts decide which dumps are checked: new ones are queued,
        // those no longer referenced leave the list; after a load or a new
        // list of source tables, every one is checked again.
        m_checkedDumps = CheckedDumps(m_doc);
        if (m_checkEverything) {
            m_dumpProblems.clear();
            m_targetFieldsCache.clear();
            m_checkQueue.clear();
        }
        for (auto it = m_dumpProblems.begin(); it != m_dumpProblems.end();)
            it = m_checkedDumps.contains(it.key()) ? std::next(it) : m_dumpProblems.erase(it);
        for (const qint16 number : m_checkedDumps)
            if (!m_dumpProblems.contains(number) && !m_checkQueue.contains(number))
                m_checkQueue.append(number);
        m_sectionProblems = CheckSections(m_doc);
        m_checkSections = m_checkEverything = false;
    }
    const qint16 shown = str::ToInteger(m_tag).value_or(0);
    while (!m_checkQueue.isEmpty() && clock.elapsed() < kCheckSliceMs) {
        const qint16 number = m_checkQueue.takeFirst();
        if (!m_checkedDumps.contains(number))
            continue;
        const QList<TargetField>& fields = targetFieldsOf(number);
        const bool inGrid = number == shown && m_rules.rowCount() > 0;
        m_dumpProblems[number] = CheckDumpRules(
            number, fields, inGrid ? m_rules.rules() : StoredRulesByRow(m_doc, number, fields.size()),
            sourceCatalogue());
    }
    if (!m_checkQueue.isEmpty())
        m_checkTimer.start(kCheckPauseMs);
    else
        publishProblems();
}

void MappingSession::publishProblems()
{
    QList<Problem> all = m_sectionProblems;
    for (const qint16 number : m_checkedDumps)
        all.append(m_dumpProblems.value(number));
    m_problems.setProblems(all);
}

QList<Problem> MappingSession::CheckMapping()
{
    // The scripts may have changed since the last look: which dumps are
    // checked is worked out again; the dumps already checked stand.
    m_checkSections = true;
    if (m_checkedDumps.isEmpty() && m_dumpProblems.isEmpty())
        m_checkEverything = true;
    while (!m_checkQueue.isEmpty() || m_checkSections)
        checkSome();
    m_checkTimer.stop();
    publishProblems();
    return m_problems.problems();
}

QList<Problem> MappingSession::PendingRemovals()
{
    StorePrecondition();
    StoreMainQuery();
    return CheckSections(m_doc);
}

void MappingSession::ShowProblem(int index)
{
    if (index < 0 || index >= m_problems.problems().size())
        return;
    const Problem p = m_problems.problems()[index];
    const int entry = int(m_dumpNumbers.indexOf(p.dump));
    if (p.dump == 0 || entry < 0)
        return;
    if (str::ToInteger(m_tag).value_or(0) != p.dump || m_dumpIndex != entry) {
        DumpChosen(entry);
        ShowDump(p.dump);
    }
    if (p.row >= 0 && p.row < m_rules.rowCount()) {
        moveGridCurrent(p.row, 1, true);
        requestFocus(Focus::Grid);
    }
}

} // namespace fb
