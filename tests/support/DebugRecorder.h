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
    DebugRecorder()
    {
        m_Previous = OrvSetDebugHandler([this](const QString&, int, const QString& message, bool,
                                            bool) { m_Messages.append(message); });
    }
    ~DebugRecorder() { OrvSetDebugHandler(std::move(m_Previous)); }

    const QStringList& messages() const { return m_Messages; }
    void clear() { m_Messages.clear(); }

private:
    Q_DISABLE_COPY(DebugRecorder)

    QStringList m_Messages;
    OrvDebugHandler m_Previous;
};
