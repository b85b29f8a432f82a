#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QColor>
#include <QFont>
#include <QGraphicsWidget>
#include <QPointer>

#include <memory>

class OrvNgExtendedNode;

/// One input or output of an extended node: a small coloured square at which edges attach, with the
/// port's text beside it. Its coordinates begin at the top-left corner of the whole port.
///
/// The square's colour tells whether the port is connected. The square's colours are read from the style
/// once, at construction, that of the text at every paint. A hidden port takes no room in its node and has
/// empty bounds. The text is not drawn when the view is zoomed out below the style's
/// SceneLODSwitchThreshold at construction.
///
/// Called by  OrvNgExtendedNode, which owns it; OrvNgView (hover); the host (special colour).
/// Uses       OrvNgStyle, OrvNgTextCache, the node's edges to tell whether it is connected.
/// Tells      its node, when the room that it needs changes.
class ORVNODEGRAPH_EXPORT OrvNgPort : public QGraphicsWidget
{
    Q_OBJECT

public:
    static constexpr double kPortWidth = 12.0; ///< of the square
    static constexpr double kPortHeight = 18.0; ///< of the square

    /// How a port begins: on its own and shown, or hidden among the ports that its node places. The node
    /// makes all of its ports so, because showing, sizing and placing each on its own first took twice
    /// the time.
    enum class Birth { Shown, HiddenInNode };

    /// name is the connection point, text what is shown. The node becomes the parent item.
    /// Subclasses end their construction with setText(text).
    OrvNgPort(OrvNgExtendedNode* node, const QString& text, const QString& name, bool boldText,
        Birth birth = Birth::Shown);
    ~OrvNgPort() override;

    void setText(const QString& text);
    QString text() const { return m_Text; }
    /// The connection point or cluster that the port stands for.
    QString originalPortName() const { return m_OriginalPortName; }
    void setOriginalPortName(const QString& name);

    /// Whether the port stands for a whole cluster; it is then named after the cluster.
    bool isClustered() const { return m_Clustered; }
    void setClustered(bool clustered);
    void setMouseHovered(bool hovered);
    /// Replaces all other colours of the square while it is valid.
    void setSpecialPortColor(const QColor& color);

    /// Hides the base class's function of that name, which is not virtual: call it on an OrvNgPort.
    void setVisible(bool visible);
    /// Whether the port itself is shown, also while its node as a whole is hidden.
    bool isShown() const { return isVisibleTo(parentItem()); }

    /// The square, in port coordinates.
    virtual QRectF portRect();
    /// The square's corner in the parent's or the scene's coordinates, with the unscaled size.
    virtual QRectF portRectMappedToParent();
    virtual QRectF portRectMappedToScene();
    /// Where edges attach, in port coordinates: the square's centre; for a hidden port the centre
    /// of its parent.
    virtual QPointF portCenterPos();

    /// The room that the port takes in its node: what its text demands, nothing while it is hidden.
    QSizeF room() const { return isShown() ? m_BoundsRect.size() : QSizeF(0.0, 0.0); }
    void setGeometry(const QRectF& rect) override;
    void updateGeometry() override;
    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    /// Top-left corner of the square, in port coordinates.
    virtual QPointF squarePos() const = 0;
    /// Top-left corner of the text, in port coordinates.
    virtual QPointF textPos() const = 0;
    virtual bool isConnected() const = 0;

    /// The text measured as a single line in its font; an empty text has no size.
    QSizeF textSize() const { return m_TextSize; }
    /// As wide as it is drawn.
    double textWidth() const { return m_TextWidth; }
    /// Where the text begins vertically, to stand centred.
    double textTop() const { return (m_BoundsRect.height() - m_TextSize.height()) * 0.5; }
    /// The whole port as its text demands it, however far the layout stretches the widget.
    const QRectF& unstretchedRect() const { return m_BoundsRect; }
    /// Null while the node is being taken apart.
    OrvNgExtendedNode* node() const;

    bool event(QEvent* event) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    friend class OrvNgFarLooks;
    struct Colors;
    static std::shared_ptr<const Colors> currentColors();

    void applySizeRule();
    QColor squareColor() const;
    void drawText(QPainter* painter) const;

    QRectF m_BoundsRect;
    QSizeF m_TextSize;
    QSizeF m_Room; ///< what the sizes were last set to; invalid for a hidden port
    double m_TextWidth = 0.0; ///< as wide as it is drawn
    QFont m_Font;
    std::shared_ptr<const Colors> m_Colors; ///< one object for all ports made under the same style
    QColor m_SpecialPortColor;
    QString m_OriginalPortName;
    QString m_Text;
    QPointer<OrvNgExtendedNode> m_Node;
    const bool m_Stacked; ///< the node places the port and is told of every change of its room
    bool m_MouseHovered = false;
    bool m_Clustered = false;
};
