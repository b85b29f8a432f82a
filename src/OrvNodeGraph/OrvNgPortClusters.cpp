#include "OrvNodeGraph/OrvNgPortClusters.h"

#include <algorithm>

void OrvNgPortClusters::assign(const List& clusters)
{
    m_List.clear();
    m_Members.clear();
    m_ClusterOf.clear();
    for (const auto& [cluster, members] : clusters) {
        m_Members[cluster] += members;
        for (const QString& member : members)
            m_ClusterOf.insert(member, cluster);

        const auto sameName = [&name = cluster](const auto& entry) { return entry.first == name; };
        const auto earlier = std::find_if(m_List.begin(), m_List.end(), sameName);
        if (earlier == m_List.end())
            m_List.append({cluster, members});
        else
            earlier->second += members;
    }
}

void OrvNgPortClusters::removeCluster(const QString& cluster)
{
    if (!hasCluster(cluster))
        return;
    List remaining = m_List;
    remaining.erase(std::remove_if(remaining.begin(), remaining.end(),
                        [&cluster](const auto& entry) { return entry.first == cluster; }),
        remaining.end());
    assign(remaining);
}

void OrvNgPortClusters::rename(const QString& from, const QString& to)
{
    if (!hasMember(from) && !hasCluster(from))
        return;
    List renamed = m_List;
    for (auto& [cluster, members] : renamed) {
        if (cluster == from)
            cluster = to;
        std::replace(members.begin(), members.end(), from, to);
    }
    assign(renamed);
}
