#include "editor/EditorPreferenceRow.h"

#include "editor/EditorPropertyEditor.h"
#include "editor/EditorPropertyValue.h"

#include <OrvCore/OrvGroupParameterObject.h>

#include <QDynamicPropertyChangeEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMetaProperty>
#include <QSignalBlocker>
#include <QToolButton>

namespace {

QMetaProperty declaredProperty(const QObject& object, const QString& name)
{
    const QMetaObject* meta = object.metaObject();
    return meta->property(meta->indexOfProperty(name.toUtf8().constData()));
}

QString labelOf(const QObject& object, const QString& name)
{
    if (const auto* group = dynamic_cast<const OrvGroupParameterObject*>(&object))
        return group->prettyPropertyName(name);
    return OrvGroupParameterObject().prettyPropertyName(name);
}

bool isReadOnly(const QObject& object, const QString& name)
{
    const QMetaProperty property = declaredProperty(object, name);
    const int own
        = property.isValid() && !property.isWritable() ? EditorPreferenceRow::kReadOnlyFlag : 0;
    const auto* group = dynamic_cast<const OrvGroupParameterObject*>(&object);
    const int flags = group ? group->propertyFlags(name, own) : own;
    return ((own | flags) & EditorPreferenceRow::kReadOnlyFlag) != 0;
}

} // namespace

EditorPreferenceRow::EditorPreferenceRow(
    QObject* object, const QString& propertyName, QWidget* parent)
    : QWidget(parent)
    , m_Object(object)
    , m_PropertyName(propertyName)
{
    setObjectName(propertyName);
    buildWidgets();
    findDefault();
    followObject();
    showValue();
}

EditorPreferenceRow::~EditorPreferenceRow() = default;

void EditorPreferenceRow::buildWidgets()
{
    m_Label = new QLabel(labelOf(*m_Object, m_PropertyName), this);
    m_Label->setTextFormat(Qt::PlainText);
    const QString unit = EditorPropertyValue::rangeOf(m_PropertyName).unit;
    m_Label->setToolTip(
        unit.isEmpty() ? m_PropertyName : tr("%1, in %2").arg(m_PropertyName, unit));
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(m_Label);
    if (!isReadOnly(*m_Object, m_PropertyName))
        m_Editor = EditorPropertyEditor::create(
            read().userType(), m_PropertyName, m_Label->text(), this);
    if (m_Editor) {
        m_Label->setBuddy(m_Editor);
        line->addWidget(m_Editor);
        connect(m_Editor, &EditorPropertyEditor::edited, this, &EditorPreferenceRow::write);
        connect(m_Editor, &EditorPropertyEditor::refused, this, &EditorPreferenceRow::refused);
    } else {
        m_Text = new QLabel(this);
        m_Text->setEnabled(false);
        line->addWidget(m_Text);
    }
    line->addStretch(1);
    buildReset();
    line->addWidget(m_Reset);
    setFocusProxy(m_Editor);
}

void EditorPreferenceRow::buildReset()
{
    m_Reset = new QToolButton(this);
    m_Reset->setText(QString(QChar(0x21BA))); // an arrow that goes round and back
    m_Reset->setAutoRaise(true);
    m_Reset->setFocusPolicy(Qt::TabFocus);
    m_Reset->setAccessibleName(tr("Reset %1").arg(m_Label->text()));
    QSizePolicy policy = m_Reset->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_Reset->setSizePolicy(policy);
    connect(m_Reset, &QToolButton::clicked, this, &EditorPreferenceRow::resetToDefault);
}

void EditorPreferenceRow::followObject()
{
    const QMetaProperty property = declaredProperty(*m_Object, m_PropertyName);
    if (!property.isValid())
        m_Object->installEventFilter(this);
    else if (property.hasNotifySignal())
        connect(m_Object, property.notifySignal(), this,
            staticMetaObject.method(staticMetaObject.indexOfSlot("showValue()")));
}

// Nothing but its RESET function knows a property's default, so it is asked: silently, and with the
// value put back before anybody could look.
void EditorPreferenceRow::findDefault()
{
    const QMetaProperty property = declaredProperty(*m_Object, m_PropertyName);
    if (!m_Editor || !property.isResettable())
        return;
    const QSignalBlocker quiet(m_Object);
    const QVariant present = read();
    property.reset(m_Object);
    m_Default = read();
    property.write(m_Object, present);
    m_Reset->setToolTip(tr("Back to %1").arg(EditorPropertyValue::toText(m_Default)));
}

bool EditorPreferenceRow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::DynamicPropertyChange
        && static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName()
            == m_PropertyName.toUtf8())
        showValue();
    return QWidget::eventFilter(watched, event);
}

QString EditorPreferenceRow::label() const
{
    return m_Label->text();
}

QWidget* EditorPreferenceRow::lastField() const
{
    return m_Reset;
}

int EditorPreferenceRow::labelWidth() const
{
    return m_Label->sizeHint().width();
}

void EditorPreferenceRow::setLabelWidth(int width)
{
    m_Label->setFixedWidth(width);
}

QVariant EditorPreferenceRow::read() const
{
    return m_Object ? m_Object->property(m_PropertyName.toUtf8().constData()) : QVariant();
}

bool EditorPreferenceRow::isDefault() const
{
    return !m_Object || !m_Default.isValid() || EditorPropertyValue::isSame(read(), m_Default);
}

void EditorPreferenceRow::showValue()
{
    if (!m_Object)
        return;
    const QVariant value = read();
    if (m_Editor)
        m_Editor->setValue(value);
    else
        m_Text->setText(EditorPropertyValue::toText(value));
    m_Reset->setVisible(!isDefault());
    Q_EMIT valueChanged();
}

void EditorPreferenceRow::rememberValue()
{
    if (!m_Before.isValid())
        m_Before = read();
}

void EditorPreferenceRow::write(const QVariant& value)
{
    if (!m_Object)
        return;
    rememberValue();
    const QVariant before = read();
    m_Object->setProperty(m_PropertyName.toUtf8().constData(), value);
    if (!m_Object)
        return; // the change was its end
    showValue(); // also where the object has no signal, or did not take the value
    Q_EMIT edited();
    if (EditorPropertyValue::isSame(before, read()) && !EditorPropertyValue::isSame(before, value))
        Q_EMIT refused(tr("“%1” does not take %2; it stays %3.")
                           .arg(label(), EditorPropertyValue::toText(value),
                               EditorPropertyValue::toText(before)));
}

void EditorPreferenceRow::resetToDefault()
{
    if (!m_Object || isDefault())
        return;
    rememberValue();
    declaredProperty(*m_Object, m_PropertyName).reset(m_Object);
    showValue();
    Q_EMIT edited();
}

void EditorPreferenceRow::putBack()
{
    if (!m_Object || !m_Before.isValid())
        return;
    m_Object->setProperty(m_PropertyName.toUtf8().constData(), m_Before);
    m_Before = QVariant();
    showValue();
}
