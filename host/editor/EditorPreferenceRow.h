#pragma once

#include <QPointer>
#include <QVariant>
#include <QWidget>

class EditorPropertyEditor;
class QLabel;
class QToolButton;

/// One preference on a page: its label, an editor for its type, and a button that gives the default
/// back. Edits go to the object at once; changes made elsewhere are shown.
///
/// The default is what the property's RESET function leaves; a property without one has no button.
/// A property whose type has no editor, or that cannot be written, is shown as text.
///
/// Called by  EditorPreferencesDialog.
/// Uses       the object's property, and what it says of it as an OrvGroupParameterObject.
/// Tells      the dialog, through its signals.
class EditorPreferenceRow : public QWidget
{
    Q_OBJECT

public:
    /// A bit of the flags given to OrvGroupParameterObject::propertyFlags(): the property is shown
    /// and not edited. An object may set it.
    static constexpr int kReadOnlyFlag = 1;

    EditorPreferenceRow(QObject* object, const QString& propertyName, QWidget* parent = nullptr);
    ~EditorPreferenceRow() override;

    /// Null once it is gone; the row does nothing then.
    QObject* object() const { return m_Object; }
    const QString& propertyName() const { return m_PropertyName; }
    QString label() const;
    /// In the order of the Tab key.
    QWidget* lastField() const;
    int labelWidth() const;
    void setLabelWidth(int width);

    /// True where no default is known.
    bool isDefault() const;
    void resetToDefault();
    /// Gives the property the value that it had before the first edit in this row. Changes made
    /// elsewhere stay where the row was never used.
    void putBack();

Q_SIGNALS:
    /// The value has changed, here or elsewhere.
    void valueChanged();
    /// An edit in this row took place.
    void edited();
    /// An edit that is no value of the property, or that the object did not take.
    void refused(const QString& why);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void showValue();

private:
    void buildWidgets();
    void buildReset();
    void followObject();
    void findDefault();
    QVariant read() const;
    void write(const QVariant& value);
    void rememberValue();

    QPointer<QObject> m_Object;
    QString m_PropertyName;
    QVariant m_Default; ///< invalid where none is known
    QVariant m_Before; ///< invalid until the first edit
    QLabel* m_Label = nullptr;
    EditorPropertyEditor* m_Editor = nullptr; ///< null where the value is text
    QLabel* m_Text = nullptr; ///< null where it is edited
    QToolButton* m_Reset = nullptr;
};
