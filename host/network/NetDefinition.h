#pragma once

#include "network/NetPort.h"

#include <QSharedPointer>
#include <QVector>

/// The definition of a node: its category, group, inputs with defaults, and outputs. Never changes
/// once it is in a library; the inputs and outputs hold the inherited ones too, own ones first.
///
/// Called by  NetDefinitionLibrary, which keeps it, and every node that was resolved to it.
/// Uses       NetPort.
/// Tells      nobody.
struct NetDefinition
{
    QString name; ///< with its namespace, as in "ns:ND_mix_float"
    QString category; ///< of the nodes it defines, with its namespace
    QString nodeGroup; ///< such as "math"; empty when the definition names none
    QString version;
    QString target; ///< comma list; empty fits every target
    QString inherit; ///< name of the base definition; empty for none
    bool defaultVersion = false; ///< serves instances that ask for no version
    QString file;
    int line = 0;
    NetAttributes attributes;
    QVector<NetPort> inputs;
    QVector<NetPort> outputs;

    /// The type that an instance carries: the one output's, or "multioutput", or what the element
    /// says.
    QString type() const;
    /// Position of the input or output of that name; -1 when there is none.
    static int indexOf(const QVector<NetPort>& ports, const QString& name);
};

/// Null means "no definition found".
using NetDefinitionPtr = QSharedPointer<const NetDefinition>;
