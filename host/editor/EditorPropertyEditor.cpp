#include "editor/EditorPropertyEditor.h"

#include "editor/EditorColorField.h"
#include "editor/EditorPropertyValue.h"

#include <OrvCoreModules/OrvColor.h>

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointF>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace {

using EditorPropertyValue::ColorPair;
using Range = EditorPropertyValue::Range;

/// A number, whole or not. The wheel scrolls the page unless the box has the focus.
class NumberBox : public QDoubleSpinBox
{
public:
    NumberBox(const Range& range, bool isWhole, QWidget* parent)
        : QDoubleSpinBox(parent)
    {
        setDecimals(isWhole ? 0 : 3);
        setRange(range.lowest, range.highest);
        setSingleStep(range.step);
        setKeyboardTracking(false); // "12" is not first a 1
        setFocusPolicy(Qt::StrongFocus);
        setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("-000000.000")) + 30);
    }

    /// Whatever the range: a value that is there is shown as it is.
    void showNumber(double number)
    {
        const QSignalBlocker quiet(this);
        if (!std::isfinite(number))
            return;
        setRange(std::min(minimum(), number), std::max(maximum(), number));
        setValue(number);
    }

    /// Without the zeros at the end of a fraction.
    QString textFromValue(double number) const override
    {
        return locale().toString(number, 'f', QLocale::FloatingPointShortest);
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::Wheel && !hasFocus()) {
            event->ignore();
            return false;
        }
        return QDoubleSpinBox::event(event);
    }
};

class NumberEditor : public EditorPropertyEditor
{
public:
    NumberEditor(int type, const QString& name, const QString& label, QWidget* parent)
        : EditorPropertyEditor(parent)
        , m_Box(new NumberBox(EditorPropertyValue::rangeOf(name), type == QMetaType::Int, this))
    {
        addField(m_Box, label);
        connect(m_Box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this, type](double number) {
                QVariant value
                    = type == QMetaType::Int ? QVariant(qRound(number)) : QVariant(number);
                value.convert(type);
                Q_EMIT edited(value);
            });
    }
    void setValue(const QVariant& value) override { m_Box->showNumber(value.toDouble()); }

private:
    NumberBox* m_Box;
};

class PointEditor : public EditorPropertyEditor
{
public:
    PointEditor(int type, const QString& name, const QString& label, QWidget* parent)
        : EditorPropertyEditor(parent)
    {
        for (NumberBox*& box : m_Boxes) {
            box = new NumberBox(
                EditorPropertyValue::rangeOf(name), type == QMetaType::QPoint, this);
            addField(box, label);
            connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, [this, type] {
                const QPointF point(m_Boxes[0]->value(), m_Boxes[1]->value());
                Q_EMIT edited(
                    type == QMetaType::QPoint ? QVariant(point.toPoint()) : QVariant(point));
            });
        }
        m_Boxes[0]->setPrefix(QStringLiteral("x "));
        m_Boxes[1]->setPrefix(QStringLiteral("y "));
    }
    void setValue(const QVariant& value) override
    {
        m_Boxes[0]->showNumber(value.toPointF().x());
        m_Boxes[1]->showNumber(value.toPointF().y());
    }

private:
    NumberBox* m_Boxes[2] = {nullptr, nullptr};
};

class ColorEditor : public EditorPropertyEditor
{
public:
    ColorEditor(int type, const QString& label, QWidget* parent)
        : EditorPropertyEditor(parent)
        , m_Field(new EditorColorField(this))
    {
        addField(m_Field, label);
        m_Field->setName(label);
        connect(m_Field, &EditorColorField::refused, this, &EditorPropertyEditor::refused);
        connect(m_Field, &EditorColorField::colorEdited, this, [this, type](const QColor& color) {
            Q_EMIT edited(
                type == QMetaType::QColor ? QVariant(color) : QVariant::fromValue(OrvColor(color)));
        });
    }
    void setValue(const QVariant& value) override { m_Field->setColor(value.value<QColor>()); }

private:
    EditorColorField* m_Field;
};

class GradientEditor : public EditorPropertyEditor
{
public:
    GradientEditor(const QString& label, QWidget* parent)
        : EditorPropertyEditor(parent)
        , m_First(new EditorColorField(this))
        , m_Second(new EditorColorField(this))
    {
        for (EditorColorField* field : {m_First, m_Second}) {
            addField(field, label);
            connect(field, &EditorColorField::refused, this, &EditorPropertyEditor::refused);
            connect(field, &EditorColorField::colorEdited, this, [this] {
                Q_EMIT edited(QVariant::fromValue(ColorPair(m_First->color(), m_Second->color())));
            });
        }
        m_First->setName(tr("%1, start").arg(label));
        m_Second->setName(tr("%1, end").arg(label));
    }
    void setValue(const QVariant& value) override
    {
        const auto pair = value.value<ColorPair>();
        m_First->setColor(pair.first);
        m_Second->setColor(pair.second);
    }

private:
    EditorColorField* m_First;
    EditorColorField* m_Second;
};

class SwitchEditor : public EditorPropertyEditor
{
public:
    SwitchEditor(const QString& label, QWidget* parent)
        : EditorPropertyEditor(parent)
        , m_Box(new QCheckBox(this))
    {
        addField(m_Box, label);
        connect(m_Box, &QCheckBox::toggled, this, [this](bool on) { Q_EMIT edited(on); });
    }
    void setValue(const QVariant& value) override
    {
        const QSignalBlocker quiet(m_Box);
        m_Box->setChecked(value.toBool());
    }

private:
    QCheckBox* m_Box;
};

class TextEditor : public EditorPropertyEditor
{
public:
    TextEditor(const QString& label, QWidget* parent)
        : EditorPropertyEditor(parent)
        , m_Line(new QLineEdit(this))
    {
        addField(m_Line, label);
        connect(m_Line, &QLineEdit::editingFinished, this, [this] {
            if (!m_Line->isModified())
                return;
            m_Line->setModified(false);
            Q_EMIT edited(m_Line->text());
        });
    }
    void setValue(const QVariant& value) override
    {
        if (m_Line->text() != value.toString())
            m_Line->setText(value.toString());
    }

private:
    QLineEdit* m_Line;
};

} // namespace

EditorPropertyEditor* EditorPropertyEditor::create(
    int type, const QString& propertyName, const QString& label, QWidget* parent)
{
    if (type == qMetaTypeId<OrvColor>() || type == QMetaType::QColor)
        return new ColorEditor(type, label, parent);
    if (type == qMetaTypeId<ColorPair>())
        return new GradientEditor(label, parent);
    switch (type) {
    case QMetaType::Int:
    case QMetaType::Float:
    case QMetaType::Double:
        return new NumberEditor(type, propertyName, label, parent);
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return new PointEditor(type, propertyName, label, parent);
    case QMetaType::Bool:
        return new SwitchEditor(label, parent);
    case QMetaType::QString:
        return new TextEditor(label, parent);
    default:
        return nullptr;
    }
}

void EditorPropertyEditor::addField(QWidget* field, const QString& label)
{
    if (!layout()) {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(0, 0, 0, 0);
        setFocusProxy(field);
    }
    field->setAccessibleName(label);
    layout()->addWidget(field);
}
