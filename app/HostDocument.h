#pragma once

#include "MappingFile.h"
#include "core/document/TextCodec.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

// The mapping object the host has open: where it came from, the name the
// window shows, the source catalogue the host's dialogs offer, and the clean
// baseline that tells whether there are unsaved changes. QtCore only: the
// window hands it the control's texts.
//
// The baseline is the text the control returned right after the document was
// loaded or last saved, not the file's text: the control writes the document
// in its own form, and only texts of that form compare.
class HostDocument {
    Q_DECLARE_TR_FUNCTIONS(HostDocument)

public:
    // File bytes as text, as every reader of mapping-object files decodes
    // them (fb::DecodeMappingFile).
    using Decoded = fb::DecodedFile;
    static Decoded decode(const QByteArray& bytes);

    static QString sampleFileName();

    // Reads a mapping object. On success the document takes the file's path
    // and name, its text waits in text() for the control, and the file heads
    // the recent files. On failure nothing changes and *error says why.
    bool open(const QString& path, QString* error);
    // The bundled sample: the installed copy when there is one, else the one
    // built into the program. It opens untitled.
    bool openSample(QString* error);

    const QString& text() const { return m_text; }
    bool declarationRemoved() const { return m_declarationRemoved; }
    const MappingFile::Catalogue& catalogue() const { return m_catalogue; }
    const QString& path() const { return m_path; } // empty while untitled
    const QString& displayName() const { return m_displayName; }

    void setBaseline(const QString& controlText) { m_baseline = controlText; }
    bool isModified(const QString& controlText) const { return controlText != m_baseline; }
    // What Revert goes back to: the document as loaded or last saved.
    const QString& cleanText() const { return m_baseline; }

    // Replaces the whole file with the control's text, indented for review
    // and diffs, in one step, after keeping the file's previous content as
    // PATH.bak; then the file is the document's, the text its baseline, and
    // the file heads the recent files. On failure nothing changes and *error
    // says why.
    bool save(const QString& controlText, const QString& path, QString* error);

    // The files last opened or saved, newest first, kept in the settings.
    QStringList recentFiles() const;
    static QString backupPath(const QString& path) { return path + QStringLiteral(".bak"); }
    void forgetRecentFile(const QString& path);
    void clearRecentFiles();

private:
    bool take(const QByteArray& bytes, const QString& path, const QString& displayName, QString* error);
    void addRecentFile(const QString& path);

    QString m_text;
    bool m_declarationRemoved = false;
    MappingFile::Catalogue m_catalogue;
    QString m_path;
    QString m_displayName;
    QString m_baseline;
};
