#pragma once

#include "network/NetAttributes.h"

/// One input or output of a node, a definition, a graph or a scope's own input or output.
///
/// A port that stands in the document is *listed*. A port that only the node's definition has is
/// shown with the definition's default and must not be written back unless it is changed.
///
/// Called by  the scene controller (ports, tool tips) and the property panel.
/// Uses       NetAttributes.
/// Tells      nobody.
struct NetPort
{
    QString name;
    QString type;
    QString
        value; ///< text as listed; null when connected, or when only the definition has the port
    QString defaultValue; ///< the definition's text; null when there is none
    NetAttributes attributes; ///< of the listed element; empty when not listed
    NetAttributes
        definitionAttributes; ///< of the definition's element; empty when it has no such port
    bool listed = false; ///< has an element in the document
    bool defined = false; ///< the node's definition has it
    int line = 0; ///< of the listed element, from 1; 0 when not listed

    /// The text of an attribute: as listed, else as defined, else null. For uimin, unit,
    /// colorspace, …
    QString attribute(QLatin1String attributeName) const;

    /// The name for people: uiname, else the plain name.
    QString displayName() const;
    /// The folder path that groups ports, levels divided by '/'; null for none.
    QString uiFolder() const { return attribute(QLatin1String("uifolder")); }
    /// The value in force when nothing is connected: listed, else default, else null.
    QString effectiveValue() const { return value.isNull() ? defaultValue : value; }
    /// True when the value is the definition's and not the document's.
    bool isDefault() const { return !listed; }
    /// True when the port may take constants only (always so for strings and file names).
    bool isUniform() const;
    /// True when the definition asks to hide the port from an artist, or from a beginner.
    bool isHidden() const
    {
        return attribute(QLatin1String("uivisible")) == QLatin1String("false");
    }
    bool isAdvanced() const
    {
        return attribute(QLatin1String("uiadvanced")) == QLatin1String("true");
    }
    /// True when the document binds the port to another one, whether that one exists or not.
    bool isConnected() const;
};
