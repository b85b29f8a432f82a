#include "OrvNodeGraph/OrvNgStyle.h"

#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgStyleText.h"

#include <OrvCore/OrvPreferenceManager.h>
#include <OrvCore/OrvResourceInfo.h>

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QStringList>
#include <QTemporaryFile>

#include <algorithm>
#include <type_traits>

namespace {
constexpr char kFile[] = "src/OrvNodeGraph/OrvNgStyle";

/// Bit 7 of the host's property flags.
constexpr int kPropertyFlag = 128;

constexpr float kEdgeClickRadius = 50.f;
constexpr float kBackdropBaseZValue = -10.f;

/// A property of the host's preference editor. The label is null where the base class's answer will
/// do.
struct Preference
{
    const char* property;
    const char* section;
    const char* label;
};

constexpr char kPreferencePage[] = QT_TRANSLATE_NOOP("OrvNgStyle", "Node Graph");
constexpr char kCategorySection[] = QT_TRANSLATE_NOOP("OrvNgStyle", "Node Category Colors");
constexpr char kGridSection[] = QT_TRANSLATE_NOOP("OrvNgStyle", "Grid");

// In the order of registration. Deliberate: ChannelNodeColor is not offered.
constexpr Preference kPreferences[] = {
    {"BasicNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Basic")},
    {"EnvironmentNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Environment")},
    {"FilterNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Filter")},
    {"GeometryNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Geometry")},
    {"LayerNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Layer")},
    {"LightingNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Lighting")},
    {"MathNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Math")},
    {"MiscNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Misc")},
    {"ProceduralNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Procedural")},
    {"SurfaceNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Surface")},
    {"SystemNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "System")},
    {"PaintNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Paint")},
    {"TeleportBroadcastNodeColor", kCategorySection,
        QT_TRANSLATE_NOOP("OrvNgStyle", "Teleport Broadcast")},
    {"TeleportReceiverNodeColor", kCategorySection,
        QT_TRANSLATE_NOOP("OrvNgStyle", "Teleport Receiver")},
    {"CurrentPaintNodeColor", kCategorySection, QT_TRANSLATE_NOOP("OrvNgStyle", "Current Paint")},
    {"GridLinesColor", kGridSection, nullptr},
    {"GridLinesWidth", kGridSection, nullptr},
    {"SceneBackgroundColor", kGridSection,
        QT_TRANSLATE_NOOP("OrvNgStyle", "Node Graph Background Color")},
};

QString defaultSheetPath()
{
    return OrvResourceInfo::instance().settingsFilePath(
        QStringLiteral("DefaultNodeGraphStyleSheet.conf"));
}

/// The user's sheet. The number in its name is the version of the format: files of other versions
/// are never looked at.
QSettings openUserSheet()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope,
        QCoreApplication::organizationName(), QStringLiteral("NodeGraphStyleSheetVer3"));
}

/// Parses every section now. Left to itself Qt parses a section when one of its keys is asked for, and then
/// misses the section of "Edge/EdgeColor" where the file has another one named "Edge\Alpha"; and lines that it
/// cannot parse show in the status only then.
void parseAll(const QSettings& sheet)
{
    sheet.allKeys();
}

/// Whether a save would drop lines of the file that cannot be parsed. QSettings says so only to the
/// first reader of a file in a process, so a scratch copy is parsed; when that fails, the worst is
/// assumed. A byte order mark is no such line, though Qt takes it for one.
bool isMalformed(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    if (file.peek(3) == "\xef\xbb\xbf")
        file.seek(3);
    const QByteArray bytes = file.readAll();
    QTemporaryFile scratch;
    if (!scratch.open() || scratch.write(bytes) != bytes.size() || !scratch.flush())
        return true;
    const QSettings sheet(scratch.fileName(), QSettings::IniFormat);
    parseAll(sheet);
    return sheet.status() == QSettings::FormatError;
}

void reportStatus(const QSettings& sheet)
{
    if (sheet.status() == QSettings::FormatError && isMalformed(sheet.fileName())) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] The style sheet '%1' is malformed in part")
                .arg(sheet.fileName()));
    } else if (sheet.status() == QSettings::AccessError) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] The style sheet '%1' is not accessible").arg(sheet.fileName()));
    }
}

/// Parses the file if values can be taken from it at all. Qt decodes a binary value ("@Variant(…)") with the
/// size that it claims to have, and a damaged one takes the process along: such files are not opened. No
/// sheet of ours holds binary values.
bool canBeRead(const QSettings& sheet)
{
    QFile file(sheet.fileName());
    if (!file.open(QIODevice::ReadOnly) || !file.readAll().contains("@Variant(")) {
        parseAll(sheet);
        return true;
    }
    orvNgReport(kFile, __LINE__,
        QStringLiteral("[ !! ] The style sheet '%1' holds a binary value; it is left alone")
            .arg(sheet.fileName()));
    return false;
}

/// Copies a file beside itself, under a name that is free. False when that fails.
bool keepCopy(const QString& path)
{
    const QString copy = path + QStringLiteral(".unreadable");
    QString freeName = copy;
    for (int number = 2; QFile::exists(freeName); ++number)
        freeName = copy + QString::number(number);
    return QFile::copy(path, freeName);
}

/// A value as text. An unquoted value with commas, as people write it by hand, arrives as a list.
QString sheetText(const QSettings& sheet, const QString& key, const QString& fallback)
{
    const QVariant value = sheet.value(key, fallback);
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1Char(','));
    return value.toString();
}

/// Rounded exactly as the text form rounds, so that screen and file agree on every colour.
QColor toQColor(const OrvColor& color)
{
    return OrvNgStyleText<QColor>::parse(OrvNgStyleText<OrvColor>::format(color));
}

QBrush solid(const QColor& color)
{
    return QBrush(color, Qt::SolidPattern);
}

/// From (0,0) to (1,1): painters set the ends before use.
QLinearGradient gradient(const QColor& first, const QColor& second)
{
    QLinearGradient result;
    result.setColorAt(0.0, first);
    result.setColorAt(1.0, second);
    return result;
}

QLinearGradient gradient(const QPair<QColor, QColor>& colors)
{
    return gradient(colors.first, colors.second);
}

QLinearGradient flatGradient(const OrvColor& color)
{
    return gradient(toQColor(color), toQColor(color));
}

QPen pen(const QColor& color, int width, Qt::PenStyle style)
{
    return QPen(solid(color), qreal(width), style, Qt::SquareCap, Qt::BevelJoin);
}
} // namespace

struct OrvNgStyle::SheetValue
{
    QString key; // "Group/Property"
    bool isWritten;
    void (*load)(OrvNgStyle& style, const QString& defaultText, const QString& text);
    QString (*overridingText)(const OrvNgStyle& style); // null when the value equals its default

    template <auto Current, auto Default> static SheetValue make(const QString& key, bool isWritten)
    {
        using Text = OrvNgStyleText<std::decay_t<decltype(std::declval<OrvNgStyle>().*Current)>>;
        const auto load = [](OrvNgStyle& style, const QString& defaultText, const QString& text) {
            style.*Default = Text::parse(defaultText);
            style.*Current = Text::parse(text);
        };
        const auto overridingText = [](const OrvNgStyle& style) {
            return style.*Current == style.*Default ? QString() : Text::format(style.*Current);
        };
        return {key, isWritten, load, overridingText};
    }
};

struct OrvNgStyle::SheetEdit
{
    QString key;
    QString text;
};

OrvNgStyle::OrvNgStyle()
{
    // Before anybody reads a property by name: Qt finds these types only once they are registered.
    qRegisterMetaType<QPair<QColor, QColor>>("QPair<QColor,QColor>");
    qRegisterMetaType<QLinearGradient>("QLinearGradient");
    qRegisterMetaType<OrvColor>("OrvColor");

    registerPreferences();
    loadPreferences();
    refreshProperties();
    connect(this, &OrvNgStyle::colorsUpdated, this, &OrvNgStyle::refreshProperties);
}

// Runs after the application object is gone: nothing of Qt's or the host's may be used here.
OrvNgStyle::~OrvNgStyle() = default;

OrvNgStyle& OrvNgStyle::instance()
{
    // Never destroyed: items in the statics of a host may outlive those of functions, and ask it to the last.
    static OrvNgStyle* const s_Style = new OrvNgStyle;
    return *s_Style;
}

QString OrvNgStyle::prettyPropertyName(const QString& name) const
{
    for (const Preference& preference : kPreferences) {
        if (preference.label && name == QLatin1String(preference.property))
            return tr(preference.label);
    }
    return OrvSerializableObject::prettyPropertyName(name);
}

int OrvNgStyle::propertyFlags(const QString& /*name*/, int flags) const
{
    return flags | kPropertyFlag;
}

void OrvNgStyle::loadPreferences()
{
    const QSettings defaults(defaultSheetPath(), QSettings::IniFormat);
    const QSettings user = openUserSheet();
    const bool hasUser = canBeRead(user);
    parseAll(defaults);
    reportStatus(defaults);
    if (hasUser)
        reportStatus(user);
    for (const SheetValue& value : sheetValues()) {
        const QString defaultText = sheetText(defaults, value.key, QString());
        value.load(
            *this, defaultText, hasUser ? sheetText(user, value.key, defaultText) : defaultText);
    }
}

void OrvNgStyle::savePreferences()
{
    QSettings user = openUserSheet();
    if (!canBeRead(user)) {
        Q_EMIT colorsUpdated();
        return;
    }
    const std::vector<SheetEdit> edits = pendingEdits(user);
    if (!edits.empty() && isMalformed(user.fileName()) && !keepCopy(user.fileName())) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral(
                "[ !! ] The style is not saved: '%1' cannot be copied before its malformed "
                "lines are dropped")
                .arg(user.fileName()));
    } else {
        for (const SheetEdit& edit : edits) {
            if (edit.text.isNull())
                user.remove(edit.key);
            else
                user.setValue(edit.key, edit.text);
        }
        user.sync();
        reportStatus(user);
    }
    Q_EMIT colorsUpdated();
}

const std::vector<OrvNgStyle::SheetValue>& OrvNgStyle::sheetValues()
{
// clang-format off
#define ORVNG_SHEET_VALUE(NAME, GROUP, WRITTEN)                                                       \
    SheetValue::make<&OrvNgStyle::m_##NAME, &OrvNgStyle::m_##NAME##Default>(                          \
        QStringLiteral(#GROUP "/" #NAME), WRITTEN),
#define ORVNG_WRITTEN(NAME, GROUP, ...) ORVNG_SHEET_VALUE(NAME, GROUP, true)
#define ORVNG_READ_ONLY(NAME, GROUP, ...) ORVNG_SHEET_VALUE(NAME, GROUP, false)
#define ORVNG_NOT_IN_SHEET(...)
    static const std::vector<SheetValue> s_Values {ORVNG_STYLE_PROPERTIES(
        ORVNG_WRITTEN, ORVNG_READ_ONLY, ORVNG_NOT_IN_SHEET, ORVNG_NOT_IN_SHEET)};
#undef ORVNG_SHEET_VALUE
#undef ORVNG_WRITTEN
#undef ORVNG_READ_ONLY
#undef ORVNG_NOT_IN_SHEET
    // clang-format on
    return s_Values;
}

std::vector<OrvNgStyle::SheetEdit> OrvNgStyle::pendingEdits(const QSettings& user) const
{
    std::vector<SheetEdit> edits;
    for (const SheetValue& value : sheetValues()) {
        if (!value.isWritten)
            continue;
        const QString text = value.overridingText(*this);
        const bool isDifferent = text.isNull() ? user.contains(value.key)
                                               : text != sheetText(user, value.key, QString());
        if (isDifferent)
            edits.push_back({value.key, text});
    }
    return edits;
}

void OrvNgStyle::registerPreferences()
{
    OrvPreferenceManager& manager = OrvPreferenceManager::instance();
    for (const Preference& preference : kPreferences) {
        manager.registerPreference(
            tr(kPreferencePage), tr(preference.section), this, QLatin1String(preference.property));
    }
}

// Most derived members are written without their changed signal; the three that are set by name go
// through their setters and tell.
void OrvNgStyle::refreshProperties()
{
    refreshScene();
    refreshNodeBrushes();
    refreshEdgeBrushes();
    refreshEdgePens();
    refreshBackdrop();
    refreshGrid();
    refreshCategories();
    setProperty(
        "CurrentPaintNodeBrush", QVariant::fromValue(flatGradient(m_CurrentPaintNodeColor)));
    m_EdgeClickRadius = kEdgeClickRadius;
    refreshMultiChannel();
}

void OrvNgStyle::refreshScene()
{
    setProperty("SceneBackgroundBrush", solid(toQColor(m_SceneBackgroundColor)));
}

void OrvNgStyle::refreshNodeBrushes()
{
    m_NodeOutlineBrush = solid(m_NodeOutlineColor);
    m_DefaultNodeBrush = gradient(m_DefaultNodeColor);
    m_SelectedNodeBrush = solid(m_SelectedNodeColor);
    m_NodeTextBrush = solid(m_NodeTextColor);
    m_NodeLockedBrush = gradient(m_NodeLockedColor);
    m_BypassedNodeBrush = gradient(m_BypassedNodeColor);
    m_BypassedNodeTextBrush = solid(m_BypassedTextColor);
    m_CachedNodeBrush = solid(m_CachedNodeColor);
    m_BakedNodeBrush = solid(m_BakedNodeColor);
    m_OutdatedBakedNodeBrush = solid(m_OutdatedBakedNodeColor);
}

void OrvNgStyle::refreshEdgeBrushes()
{
    m_EdgeLabelBrush = solid(m_EdgeLabelColor);
    m_EdgeBrush = solid(m_EdgeColor);
    m_PrefferedEdgeBrush = solid(m_PrefferedEdgeColor);
    m_SelectableEdgeBrush = solid(m_SelectableEdgeColor);
    m_SelectedEdgeBrush = solid(m_SelectedEdgeColor);
    m_HighlightForNodeInsertEdgeBrush = solid(m_HighlightForNodeInsertEdgeColor);
    m_DotableMarkerBrush = solid(m_DotableMarkerColor);
    m_PortTextBrush = solid(m_PortTextColor);
    m_CrossedOutBypassedEdgeBrush = solid(m_CrossedOutBypassedEdgeColor);
    // Deliberate: SeveredEdgeBrush stays as its setter left it.
}

void OrvNgStyle::refreshEdgePens()
{
    const struct
    {
        QPen& pen;
        QColor color;
        int width;
        Qt::PenStyle style;
    } rows[] = {
        {m_NormalEdgePen, m_EdgeColor, m_EdgePenWidth, Qt::SolidLine},
        // Deliberate: not PrefferedEdgeColor. Preferred edges differ from normal ones by width
        // alone.
        {m_PrefferedEdgePen, m_EdgeColor, m_PrefferedEdgePenWidth, Qt::SolidLine},
        // Deliberate: shared pens have the normal width. SharedEdgePenWidth is used by no pen.
        {m_SharedEdgePen, m_EdgeColor, m_EdgePenWidth, Qt::DotLine},
        {m_SelectedNormalEdgePen, m_SelectedEdgeColor, m_EdgePenWidth, Qt::SolidLine},
        {m_SelectedPrefferedEdgePen, m_SelectedEdgeColor, m_PrefferedEdgePenWidth, Qt::SolidLine},
        {m_SelectedSharedEdgePen, m_SelectedEdgeColor, m_EdgePenWidth, Qt::DotLine},
        {m_SelectableNormalEdgePen, m_SelectableEdgeColor, m_EdgePenWidth, Qt::SolidLine},
        {m_SelectablePrefferedEdgePen, m_SelectableEdgeColor, m_PrefferedEdgePenWidth,
            Qt::SolidLine},
        {m_SelectableSharedEdgePen, m_SelectableEdgeColor, m_EdgePenWidth, Qt::DotLine},
        {m_HighlightForNodeInsertPen, m_HighlightForNodeInsertEdgeBrush.color(), m_EdgePenWidth,
            Qt::SolidLine},
        {m_SeveredEdgePen, m_SeveredEdgeColor, m_EdgePenWidth, Qt::DashDotDotLine},
        {m_BypassedEdgePen, m_EdgeColor, m_BypassedEdgePenWidth, Qt::SolidLine},
        {m_ActivatedEdgePen, m_ActivatedEdgeColor, m_EdgePenWidth, Qt::SolidLine},
    };
    for (const auto& row : rows)
        row.pen = pen(row.color, row.width, row.style);
}

void OrvNgStyle::refreshBackdrop()
{
    m_BackdropNodeBackgroundColor = QColor(200, 200, 200, 255);
    m_BackdropNodeBaseZValue = kBackdropBaseZValue;
    m_BackdropNodeTitleBarBrush = solid(m_BackdropNodeTitleBarColor);
    m_BackdropNodeResizeHoverAreaBrush = solid(m_BackdropNodeResizeHoverAreaColor);
    m_BackdropNodeLightTextColor = QColor(255, 255, 255, 255);
    m_BackdropNodeDarkTextColor = QColor(0, 0, 0, 255);
}

void OrvNgStyle::refreshGrid()
{
    m_GridLinesWidth = std::max(m_GridLinesWidth, 1);
    setProperty("GridPen", pen(toQColor(m_GridLinesColor), m_GridLinesWidth, Qt::SolidLine));
}

void OrvNgStyle::refreshCategories()
{
    const struct
    {
        const char* brush;
        const OrvColor& color;
    } rows[] = {
        {"BasicNodeBrush", m_BasicNodeColor},
        {"ChannelNodeBrush", m_ChannelNodeColor},
        {"EnvironmentNodeBrush", m_EnvironmentNodeColor},
        {"FilterNodeBrush", m_FilterNodeColor},
        {"GeometryNodeBrush", m_GeometryNodeColor},
        {"LayerNodeBrush", m_LayerNodeColor},
        {"LightingNodeBrush", m_LightingNodeColor},
        {"MathNodeBrush", m_MathNodeColor},
        {"MiscNodeBrush", m_MiscNodeColor},
        {"ProceduralNodeBrush", m_ProceduralNodeColor},
        {"SurfaceNodeBrush", m_SurfaceNodeColor},
        {"SystemNodeBrush", m_SystemNodeColor},
        {"PaintNodeBrush", m_PaintNodeColor},
        {"TeleportBroadcastNodeBrush", m_TeleportBroadcastNodeColor},
        {"TeleportReceiverNodeBrush", m_TeleportReceiverNodeColor},
    };
    for (const auto& row : rows)
        setProperty(row.brush, QVariant::fromValue(flatGradient(row.color)));
}

void OrvNgStyle::refreshMultiChannel()
{
    const struct
    {
        const char* brush;
        const QPair<QColor, QColor>& colors;
    } rows[] = {
        {"MultiChannelMergeNodeBrush", m_MultiChannelMergeNodeColor},
        {"MultiChannelBakePointNodeBrush", m_MultiChannelBakePointNodeColor},
        {"MultiChannelBottomTransparencyNodeBrush", m_MultiChannelBottomTransparencyNodeColor},
        {"MultiChannelMaterialNodeBrush", m_MultiChannelMaterialNodeColor},
        {"MultiChannelInvalidNodeBrush", m_MultiChannelInvalidNodeColor},
    };
    for (const auto& row : rows)
        setProperty(row.brush, QVariant::fromValue(gradient(row.colors)));
}
