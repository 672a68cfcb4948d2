// The pieces of bench_control shared by its files: clocks, the event loop
// settled, memory figures, pugixml's floors, the answering of modal boxes,
// the host window with a person's hands, the results and the table.
//
// Everything here reaches the control as a host and a person do: by its
// properties and methods by name and its screen controls by objectName.
#pragma once

#include "MappingGenerator.h"
#include "ctlFieldbridge.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

class QAbstractItemView;
class QTreeView;

namespace fb::bench {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start);

// The CPU time of this process: on a machine shared with other work it
// varies less than the wall-clock time a user waits.
double cpuMs();

double median(std::vector<double> v);

// Everything the event loop still has to do after an action: posted events,
// deferred layouts, repaints of the offscreen backing store.
void settle();

// ---------------------------------------------------------------------------
// Memory: the resident set's high-water mark, reset between phases

long statusKb(const char* key);
bool resetPeak();

// ---------------------------------------------------------------------------
// pugixml alone: the floors

constexpr unsigned kParseFlags = pugi::parse_default | pugi::parse_declaration | pugi::parse_pi |
                                 pugi::parse_comments | pugi::parse_doctype | pugi::parse_fragment;

bool parseInPlace(pugi::xml_document& doc, QByteArray& utf8);

struct StringWriter : pugi::xml_writer {
    std::string out;
    void write(const void* data, size_t size) override { out.append(static_cast<const char*>(data), size); }
};

// ---------------------------------------------------------------------------
// Modal boxes: answered from a polling timer, the time a box stood open
// taken out of the action's time

class ModalAnswerer : public QObject {
public:
    ModalAnswerer();

    // The next box is answered with this button; box opening times are
    // taken from their Show events until disarm().
    void arm(QMessageBox::StandardButton answer);
    // The time boxes stood open since arm().
    double disarm();
    int answered() const { return m_answered; }
    const QStringList& unexpected() const { return m_unexpected; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void poll();
    void answer(QPointer<QWidget> target, Clock::time_point shownAt);

    QTimer m_timer;
    std::deque<QMessageBox::StandardButton> m_answers;
    std::map<QWidget*, Clock::time_point> m_shownAt;
    QPointer<QWidget> m_current;
    double m_openMs = 0;
    int m_answered = 0;
    QStringList m_unexpected;
};

// ---------------------------------------------------------------------------
// A host window with the control, and a person's hands

class Host {
public:
    Host();

    // A new control, shown empty: Edit and TargetTable set as a host does
    // before it hands the document in.
    void recreate();
    void load(const QString& text);
    bool activate();

    template <typename T = QWidget> T* find(const QString& name) const { return ctl->findChild<T*>(name); }

    void clickTab(int index) const;

    ctlFieldbridge* ctl = nullptr;

private:
    std::unique_ptr<QWidget> m_window;
};

void clickCell(QAbstractItemView* view, int row, int column);
void clickInto(QWidget* w);
void keyToFocus(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
QStringList column(const QAbstractItemView* view, int col);
int visibleRows(const QTreeView* view);

// Waits (up to a limit) until the list shows another number of rows, for a
// filter that applies itself after a pause; the time waited, or 0.
double waitForRowsChange(const QTreeView* view, int before, int limitMs = 500);

// ---------------------------------------------------------------------------
// Results

struct Measure {
    std::vector<double> runs; // ms, or MiB for memory
    std::vector<double> cpu;  // CPU ms of the process over the same span, where known
    QString skipped;          // why there is no figure
    double value() const { return median(runs); }
    bool has() const { return !runs.empty(); }
};

struct SizeResults {
    std::map<QString, Measure> m;
    QStringList notes;
    qint64 bytes = 0;
    int sourceFields = 0, targetFields = 0, dumps = 0, rules = 0;
};

MultiTargetShape shapeOf(const QString& size);

// ---------------------------------------------------------------------------
// Memory, each phase in a fresh process

// Child: the same set-up as a host (an empty control shown, the text in
// memory), then the peak is reset and one phase runs. Prints one JSON line.
int memoryChild(const QString& size, const QString& phase);
void measureMemory(const QString& size, int runs, SizeResults& out);

// ---------------------------------------------------------------------------
// The table, printed and written as JSON

// The first three fields of /proc/loadavg: other work on the machine makes
// the figures noisier.
QString loadAverage();

int report(const std::map<QString, SizeResults>& results, const QJsonArray& core, const QString& jsonPath,
           const QString& commit, const QString& loadBefore);

// The offscreen platform's chatter about window hints left out of the output.
void quietOffscreenMessages();

} // namespace fb::bench
