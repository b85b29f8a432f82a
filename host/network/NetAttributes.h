#pragma once

#include <QLatin1String>
#include <QPair>
#include <QString>
#include <QVector>

/// The attributes of one element, in the order and with the texts of the file. Copies share their
/// data.
///
/// Called by  every class of the model that stands for an element.
/// Uses       nothing.
/// Tells      nobody.
class NetAttributes
{
public:
    using Pair = QPair<QString, QString>;

    void append(const QString& name, const QString& value) { m_Pairs.append({name, value}); }

    /// The text of the first attribute of that name; a null string when there is none.
    QString value(QLatin1String name) const;
    bool contains(QLatin1String name) const;
    const QVector<Pair>& pairs() const { return m_Pairs; }

private:
    QVector<Pair> m_Pairs;
};

inline QString NetAttributes::value(QLatin1String name) const
{
    for (const Pair& pair : m_Pairs) {
        if (pair.first == name)
            return pair.second;
    }
    return {};
}

inline bool NetAttributes::contains(QLatin1String name) const
{
    return !value(name).isNull();
}
