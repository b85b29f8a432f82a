#pragma once

#include <QHash>
#include <QMap>
#include <QPair>
#include <QPoint>
#include <QString>

#include <cmath>

/// Internal. What a node knows by name about the connection points of one of its sides.
///
/// A plain value: the four tables are replaced whole by the host, and the queries answer for every name,
/// also for one that no table knows.
///
/// Called by  OrvNgNode, which holds one for its inputs and one for its outputs.
/// Uses       nothing.
/// Tells      nobody.
class OrvNgConnectionTable
{
public:
    /// Offsets from the centre of the node's bounding rectangle: first the attachment point on the
    /// node, second the approach point outside it.
    using Position = QPair<QPoint, QPoint>;

    QHash<QString, Position> m_Positions;
    QHash<QString, float> m_TextPositions;
    QMap<QString, QString> m_PrettyNames;
    QMap<QString, QString> m_DescriptiveNames;

    /// Both offsets are (0, 0) for an unknown name: the point lies in the node's centre.
    Position position(const QString& name) const { return m_Positions.value(name); }

    /// Where along the edge its label sits, 0 (source) to 1 (destination); halfway for an unknown name and
    /// for what is not a number.
    float textPosition(const QString& name) const
    {
        const float position = m_TextPositions.value(name, 0.5F);
        return std::isfinite(position) ? position : 0.5F;
    }

    /// The name itself where no table entry, or an empty one, stands for it.
    QString prettyName(const QString& name) const { return entryOrName(m_PrettyNames, name); }
    QString descriptiveName(const QString& name) const
    {
        return entryOrName(m_DescriptiveNames, name);
    }

private:
    static QString entryOrName(const QMap<QString, QString>& table, const QString& name)
    {
        const QString entry = table.value(name);
        return entry.isEmpty() ? name : entry;
    }
};
