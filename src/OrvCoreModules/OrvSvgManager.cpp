#include "OrvCoreModules/OrvSvgManager.h"

#include "OrvCore/OrvDebug.h"
#include "OrvCore/OrvResourceInfo.h"

#include <QFileInfo>
#include <QSvgRenderer>

namespace {

bool isPlainFileName(const QString& name)
{
    return !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'))
        && !name.contains(QLatin1String("..")) && !name.contains(QChar(QChar::Null));
}

} // namespace

OrvSvgManager* OrvSvgManager::instance()
{
    static auto* const s_Instance
        = new OrvSvgManager; // renderers must not die after the application
    return s_Instance;
}

OrvSvgManager::OrvSvgManager() = default;
OrvSvgManager::~OrvSvgManager() = default;

QSvgRenderer* OrvSvgManager::renderer(const QString& name)
{
    if (name.isEmpty())
        return nullptr;
    const QString iconPath = OrvResourceInfo::instance().iconPath();
    if (iconPath != m_IconPath) {
        m_ByName.clear();
        m_IconPath = iconPath;
    }
    const auto known = m_ByName.constFind(name);
    return known != m_ByName.constEnd() ? *known : *m_ByName.insert(name, load(name));
}

QSvgRenderer* OrvSvgManager::load(const QString& name)
{
    const QString path = m_IconPath + QLatin1Char('/') + name + QStringLiteral(".svg");
    if (isPlainFileName(name) && QFileInfo(path).isFile()) {
        auto renderer = std::make_unique<QSvgRenderer>(path);
        if (renderer->isValid()) {
            m_Renderers.push_back(std::move(renderer));
            return m_Renderers.back().get();
        }
    }
    OrvDebug("src/OrvCoreModules/OrvSvgManager", __LINE__,
        QStringLiteral("[ !! ] There is no readable icon '%1' (%2)").arg(name, path), false, false);
    return nullptr;
}
