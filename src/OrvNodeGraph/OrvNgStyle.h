#pragma once

#include "OrvNodeGraph/OrvNgStyleProperties.h"
#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <OrvCore/OrvSerializableObject.h>
#include <OrvCoreModules/OrvColor.h>

#include <QBrush>
#include <QColor>
#include <QLinearGradient>
#include <QPair>
#include <QPen>
#include <QPoint>
#include <QPointF>

#include <cmath>
#include <vector>

class QSettings;

Q_DECLARE_METATYPE(QLinearGradient)

// clang-format off
#define ORVNG_STYLE_PROPERTY(NAME, ...) \
    Q_PROPERTY(__VA_ARGS__ NAME READ get##NAME WRITE set##NAME RESET reset##NAME NOTIFY NAME##Changed)
#define ORVNG_STYLE_FILE_PROPERTY(NAME, GROUP, ...) ORVNG_STYLE_PROPERTY(NAME, __VA_ARGS__)

#define ORVNG_STYLE_ACCESSORS(NAME, ...)                                                             \
    __VA_ARGS__ get##NAME() const { return m_##NAME; }                                               \
    void set##NAME(__VA_ARGS__ value) { assign(m_##NAME, value, &OrvNgStyle::NAME##Changed); }       \
    void reset##NAME() { set##NAME(m_##NAME##Default); }
#define ORVNG_STYLE_FILE_ACCESSORS(NAME, GROUP, ...) ORVNG_STYLE_ACCESSORS(NAME, __VA_ARGS__)

#define ORVNG_STYLE_SIGNAL(NAME, ...) void NAME##Changed(__VA_ARGS__);
#define ORVNG_STYLE_FILE_SIGNAL(NAME, GROUP, ...) ORVNG_STYLE_SIGNAL(NAME, __VA_ARGS__)

#define ORVNG_STYLE_MEMBERS(NAME, ...) \
    __VA_ARGS__ m_##NAME {};           \
    __VA_ARGS__ m_##NAME##Default {};
#define ORVNG_STYLE_FILE_MEMBERS(NAME, GROUP, ...) ORVNG_STYLE_MEMBERS(NAME, __VA_ARGS__)
// clang-format on

/// Every colour, brush, gradient, pen, size and threshold that the items and the view paint with.
///
/// One object per process. Each value is a Qt property, listed in OrvNgStyleProperties.h, with
/// getter, setter, reset and changed signal. Three kinds:
/// - values of the style sheet: read from the user's sheet, else from the installed default sheet;
/// - derived values: brushes, gradients and pens made of those by refreshProperties();
/// - fixed values, which refreshProperties() assigns again each time.
/// Setting a colour alone does not change the brushes made of it: emit colorsUpdated(), or save.
///
/// Besides these, refreshProperties() keeps one gradient per node category as a dynamic property,
/// a QLinearGradient named "<Category>NodeBrush" ("MathNodeBrush", "MultiChannelMergeNodeBrush").
/// A category without such a property has no colour of its own.
///
/// Sizes and widths are in scene units. A setter ignores a value that is equal, and a number that
/// is not finite. GUI thread only.
///
/// Called by  items and the view as they paint, lay out or are built; the host's preferences.
/// Uses       OrvNgStyleText; the default and the user's style sheet file.
/// Tells      the view and the host, by changed signals.
class ORVNODEGRAPH_EXPORT OrvNgStyle : public OrvSerializableObject
{
    Q_OBJECT
    // clang-format off
    ORVNG_STYLE_PROPERTIES(ORVNG_STYLE_FILE_PROPERTY, ORVNG_STYLE_FILE_PROPERTY, ORVNG_STYLE_PROPERTY, ORVNG_STYLE_PROPERTY)
    // clang-format on

public:
    /// Registers the preferences, loads both style sheets and computes all derived values.
    OrvNgStyle();
    ~OrvNgStyle() override;

    /// The one style object, made on the first call. A QCoreApplication with its organisation name
    /// must exist by then, because the place of the user's style sheet depends on it. Do not call
    /// it from static initialisers or destructors.
    static OrvNgStyle& instance();

    /// The label of a property in the host's preference editor; the base class's for a property
    /// that has none of its own.
    QString prettyPropertyName(const QString& name) const override;

    /// flags with the host's bit 7 set: every property is shown in the same way.
    int propertyFlags(const QString& name, int flags) const override;

    // clang-format off
    // NOLINTNEXTLINE(performance-unnecessary-value-param): setters take values
    ORVNG_STYLE_PROPERTIES(ORVNG_STYLE_FILE_ACCESSORS, ORVNG_STYLE_FILE_ACCESSORS, ORVNG_STYLE_ACCESSORS, ORVNG_STYLE_ACCESSORS)
    // clang-format on

public Q_SLOTS:
    /// Reads every style sheet value and what reset restores. Emits nothing; derived values are as
    /// before until colorsUpdated(). A file that cannot be read is reported and counts as empty.
    void loadPreferences();

    /// Writes the values that differ from the default style sheet to the user's style sheet, drops
    /// those that do not, and emits colorsUpdated(). The host calls it after an edit of
    /// preferences. The file is untouched when it holds these values already. A malformed file is
    /// first copied beside itself.
    void savePreferences();

    /// Computes all derived and fixed values. Runs on every colorsUpdated(). Of the derived values
    /// only SceneBackgroundBrush, GridPen and CurrentPaintNodeBrush emit their changed signals
    /// here: whoever keeps another brush or pen reads it again on colorsUpdated().
    void refreshProperties();

Q_SIGNALS:
    /// Colours or widths have changed; derived values are recomputed by now for every other
    /// receiver. Anybody may emit it to have them recomputed.
    void colorsUpdated();

    // clang-format off
    ORVNG_STYLE_PROPERTIES(ORVNG_STYLE_FILE_SIGNAL, ORVNG_STYLE_FILE_SIGNAL, ORVNG_STYLE_SIGNAL, ORVNG_STYLE_SIGNAL)
    // clang-format on

private:
    /// One value of the style sheet: its key in the file, and how it is read and written.
    struct SheetValue;
    /// What one save has to do with one key: write text, or remove the key when text is null.
    struct SheetEdit;

    Q_DISABLE_COPY(OrvNgStyle)

    /// Compares, stores and tells: the one body of all setters. The old value stays when the new
    /// one is not a number, which, being unequal to itself, would be told as a change each time,
    /// or is too large for sizes in whole pixels.
    template <typename T> void assign(T& member, const T& value, void (OrvNgStyle::*changed)(T));

    template <typename T> static bool isUsable(const T&) { return true; }
    static bool isUsable(float value) { return std::abs(value) <= 1e8F; }
    static bool isUsable(const QPointF& value)
    {
        return std::abs(value.x()) <= 1e8 && std::abs(value.y()) <= 1e8;
    }
    static bool isUsable(const OrvColor& value)
    {
        return isUsable(value.r) && isUsable(value.g) && isUsable(value.b) && isUsable(value.a);
    }

    static const std::vector<SheetValue>& sheetValues();
    std::vector<SheetEdit> pendingEdits(const QSettings& user) const;

    void registerPreferences();
    void refreshScene();
    void refreshNodeBrushes();
    void refreshEdgeBrushes();
    void refreshEdgePens();
    void refreshBackdrop();
    void refreshGrid();
    void refreshCategories();
    void refreshMultiChannel();

    // clang-format off
    ORVNG_STYLE_PROPERTIES(ORVNG_STYLE_FILE_MEMBERS, ORVNG_STYLE_FILE_MEMBERS, ORVNG_STYLE_MEMBERS, ORVNG_STYLE_MEMBERS)
    // clang-format on
};

template <typename T>
void OrvNgStyle::assign(T& member, const T& value, void (OrvNgStyle::*changed)(T))
{
    if (!isUsable(value) || member == value)
        return;
    member = value;
    Q_EMIT(this->*changed)(value);
}

#undef ORVNG_STYLE_PROPERTY
#undef ORVNG_STYLE_FILE_PROPERTY
#undef ORVNG_STYLE_ACCESSORS
#undef ORVNG_STYLE_FILE_ACCESSORS
#undef ORVNG_STYLE_SIGNAL
#undef ORVNG_STYLE_FILE_SIGNAL
#undef ORVNG_STYLE_MEMBERS
#undef ORVNG_STYLE_FILE_MEMBERS
