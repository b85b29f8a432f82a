#pragma once

#include "OrvCore/OrvDebug.h"

#include <QStringList>

#include <utility>

/// Collects the reports made while it lives, instead of the handler before it, which it restores at
/// its end. Recorders nest: the innermost hears.
///
/// Called by  tests: "reports and changes nothing" is a count and a comparison.
/// Uses       OrvSetDebugHandler.
/// Tells      nobody.
class DebugRecorder
{
public:
    struct Report
    {
        QString file;
        int line = 0;
        QString message;
    };

    DebugRecorder()
    {
        m_Previous = OrvSetDebugHandler(
            [this](const QString& file, int line, const QString& message, bool, bool) {
                m_Reports.append({file, line, message});
            });
    }
    ~DebugRecorder() { OrvSetDebugHandler(std::move(m_Previous)); }

    const QList<Report>& reports() const { return m_Reports; }

    QStringList messages() const
    {
        QStringList texts;
        for (const Report& report : m_Reports)
            texts.append(report.message);
        return texts;
    }

    /// How often exactly this message was reported.
    int count(const QString& message) const { return messages().count(message); }

    void clear() { m_Reports.clear(); }

private:
    Q_DISABLE_COPY(DebugRecorder)

    QList<Report> m_Reports;
    OrvDebugHandler m_Previous;
};
