#include "network/NetXmlPatches.h"

#include <algorithm>

void NetXmlPatches::add(const QByteArray& text, int begin, int end, const QByteArray& after)
{
    const Patch patch{begin, text.mid(begin, end - begin), after};
    if (patch.before == after)
        return;
    // An insertion goes before what is replaced or removed from the same position on.
    const auto sooner = [](const Patch& a, const Patch& b) {
        return std::make_pair(a.offset, !a.before.isEmpty())
            < std::make_pair(b.offset, !b.before.isEmpty());
    };
    m_Patches.insert(std::upper_bound(m_Patches.begin(), m_Patches.end(), patch, sooner), patch);
}

QByteArray NetXmlPatches::applied(const QByteArray& text) const
{
    QByteArray result;
    result.reserve(text.size() + 256);
    int done = 0;
    for (const Patch& patch : m_Patches) {
        if (text.mid(patch.offset, patch.before.size()) != patch.before)
            return {};
        result.append(text.constData() + done, patch.offset - done);
        result.append(patch.after);
        done = patch.offset + patch.before.size();
    }
    result.append(text.constData() + done, text.size() - done);
    return result;
}

QByteArray NetXmlPatches::reverted(const QByteArray& text) const
{
    QByteArray result;
    result.reserve(text.size() + 256);
    int done = 0;
    int shift = 0; // from a place before the change to the same place after it
    for (const Patch& patch : m_Patches) {
        const int offset = patch.offset + shift;
        if (text.mid(offset, patch.after.size()) != patch.after)
            return {};
        result.append(text.constData() + done, offset - done);
        result.append(patch.before);
        done = offset + patch.after.size();
        shift += patch.after.size() - patch.before.size();
    }
    result.append(text.constData() + done, text.size() - done);
    return result;
}
