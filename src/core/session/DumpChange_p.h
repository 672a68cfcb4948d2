#pragma once

#include "MappingSession.h"
#include "core/document/TextRules.h"

namespace fb {

// A change of the dump whose rules the grid holds, from the moment the scope
// opens to the moment it closes. Scopes nest; the outermost one records, so
// that a command which commits an open edit on its way is one step.
class MappingSession::DumpChange {
public:
    DumpChange(MappingSession& s, DumpAction action, QString detail = QString())
        : m_s(s), m_action(action), m_detail(std::move(detail)),
          m_outermost(s.m_changeDepth++ == 0 && !s.m_restoring)
    {
        if (m_outermost)
            m_before = s.captureDump(str::ToInteger(s.m_tag).value_or(0));
    }
    ~DumpChange()
    {
        --m_s.m_changeDepth;
        if (!m_outermost || m_before.number <= 0)
            return;
        DumpState after = m_s.captureDump(m_before.number);
        if (after == m_before)
            return;
        Step step;
        step.kind = Step::Kind::Dump;
        step.text = m_s.describe(m_action, m_before, after, m_detail);
        step.dumpBefore = std::move(m_before);
        step.dumpAfter = std::move(after);
        m_s.record(std::move(step));
    }
    DumpChange(const DumpChange&) = delete;
    DumpChange& operator=(const DumpChange&) = delete;
    void setDetail(const QString& detail) { m_detail = detail; }

private:
    MappingSession& m_s;
    DumpAction m_action;
    QString m_detail;
    bool m_outermost;
    DumpState m_before;
};

} // namespace fb
