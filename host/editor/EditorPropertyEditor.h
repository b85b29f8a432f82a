#pragma once

#include <QVariant>
#include <QWidget>

/// The widgets that edit one value of a property. An editor shows what it is given and tells what
/// the user makes of it; it never keeps a value of its own.
///
/// Called by  EditorPreferenceRow.
/// Uses       EditorColorField, EditorPropertyValue.
/// Tells      the row, through its signals.
class EditorPropertyEditor : public QWidget
{
    Q_OBJECT

public:
    /// For values of that meta-type; null for a type that has no editor. The property's name tells
    /// the range of a number. The label is for assistive technology.
    static EditorPropertyEditor* create(
        int type, const QString& propertyName, const QString& label, QWidget* parent);

    /// Shows a value of the editor's type and tells nobody.
    virtual void setValue(const QVariant& value) = 0;

Q_SIGNALS:
    /// A value of the editor's type.
    void edited(const QVariant& value);
    /// What the user entered is no value; the old one is shown again.
    void refused(const QString& why);

protected:
    using QWidget::QWidget;
    void addField(QWidget* field, const QString& label);
};
