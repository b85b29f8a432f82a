#pragma once

#include "network/NetEditor.h"

/// Which edits a document allows, with the reason where it does not: one translated sentence, or an empty
/// text.
///
/// Called by  NetEditor.
/// Uses       NetDocument.
/// Tells      nobody.
class NetRules
{
public:
    explicit NetRules(const NetDocument& document)
        : m_Document(document)
    {
    }

    QString whyNotConnect(int scope, const NetPortRef& source, const NetPortRef& dest) const;
    QString whyNotDisconnect(int scope, const NetPortRef& dest) const;
    QString whyNotMove(int scope, int node) const;
    QString whyNotRemove(int scope, int node) const;
    QString whyNotAdd(int scope) const;
    QString whyNotChangeBackdrop(int scope, int backdrop) const;
    QString whyNotRemoveBackdrop(int scope, int backdrop) const;

private:
    QString whyNotEnter(int scope) const;
    QString whyNotReach(int scope, int node) const;
    QString whyNotEdit(int scope, int node) const;
    QString whyNotTake(int scope, const NetPortRef& dest) const;
    static QString whyNotNamed(const NetScope& scope, const NetPortRef& source);
    static QString whyNotTypes(
        const NetScope& scope, const NetPortRef& source, const NetPortRef& dest);
    static bool feeds(const NetScope& scope, int source, int dest);
    QString whyNotUncover(int scope, const QString& name) const;
    bool isCoveringIncluded(const QString& name) const;

    const NetDocument& m_Document;
};
