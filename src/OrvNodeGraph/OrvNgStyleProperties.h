#pragma once

// The style's properties, each written once, in the order that the meta-object shows.
//
// Four kinds of row, the value type last:
//   FILE(name, group, type)            in the style sheet, below [group]
//   FILE_READ_ONLY(name, group, type)  the same, but never written to the user's style sheet
//   DERIVED(name, type)                computed by refreshProperties
//   FIXED(name, type)                  a constant that refreshProperties assigns
//
// The row FILE(EdgePenWidth, Edge, int) makes these members of OrvNgStyle:
//   int  getEdgePenWidth() const;             the current value
//   void setEdgePenWidth(int value);          stores it and emits, unless it is equal
//   void resetEdgePenWidth();                 back to the default style sheet's value
//   void EdgePenWidthChanged(int);            the signal
//   int  m_EdgePenWidth;                      the current value
//   int  m_EdgePenWidthDefault;               what reset restores
//
// SeveredEdgeBrush is a derived row that nothing computes: it stays empty until somebody sets it.
// Names are keys in users' files: never rename one.

// clang-format off
#define ORVNG_STYLE_PROPERTIES(FILE, FILE_READ_ONLY, DERIVED, FIXED) \
  FILE          (SceneLODSwitchThreshold,                 LOD,                float)                \
  FILE          (EdgeLODSwitchThreshold,                  LOD,                float)                \
  FILE          (SceneBackgroundColor,                    Scene,              OrvColor)             \
  DERIVED       (SceneBackgroundBrush,                                        QBrush)               \
  FILE          (GridLinesColor,                          Scene,              OrvColor)             \
  FILE          (GridLinesWidth,                          Scene,              int)                  \
  DERIVED       (GridPen,                                                     QPen)                 \
  FILE          (NodeOutlineColor,                        NodeStateColors,    QColor)               \
  DERIVED       (NodeOutlineBrush,                                            QBrush)               \
  FILE          (NodeOutlineWidth,                        NodeStateColors,    int)                  \
  FILE          (NodeTextColor,                           NodeStateColors,    QColor)               \
  DERIVED       (NodeTextBrush,                                               QBrush)               \
  FILE          (DefaultNodeColor,                        NodeStateColors,    QPair<QColor,QColor>) \
  DERIVED       (DefaultNodeBrush,                                            QLinearGradient)      \
  FILE          (SelectedNodeColor,                       NodeStateColors,    QColor)               \
  DERIVED       (SelectedNodeBrush,                                           QBrush)               \
  FILE          (CachedNodeColor,                         NodeStateColors,    QColor)               \
  DERIVED       (CachedNodeBrush,                                             QBrush)               \
  FILE          (BakedNodeColor,                          NodeStateColors,    QColor)               \
  DERIVED       (BakedNodeBrush,                                              QBrush)               \
  FILE          (OutdatedBakedNodeColor,                  NodeStateColors,    QColor)               \
  DERIVED       (OutdatedBakedNodeBrush,                                      QBrush)               \
  FILE          (BypassedNodeColor,                       NodeStateColors,    QPair<QColor,QColor>) \
  DERIVED       (BypassedNodeBrush,                                           QLinearGradient)      \
  FILE          (BypassedTextColor,                       NodeStateColors,    QColor)               \
  DERIVED       (BypassedNodeTextBrush,                                       QBrush)               \
  FILE          (NodeLockedColor,                         NodeStateColors,    QPair<QColor,QColor>) \
  DERIVED       (NodeLockedBrush,                                             QLinearGradient)      \
  FILE          (CurrentPaintNodeColor,                   NodeStateColors,    OrvColor)             \
  DERIVED       (CurrentPaintNodeBrush,                                       QLinearGradient)      \
  FILE          (MinimumNodeWidth,                        NodeDimensions,     float)                \
  FILE          (NodeHeight,                              NodeDimensions,     float)                \
  FILE          (NodeShapeIndentX,                        NodeDimensions,     float)                \
  FILE          (NodeTextPaddingX,                        NodeDimensions,     float)                \
  FILE          (NodeTextPaddingY,                        NodeDimensions,     float)                \
  FILE          (NodeInnerStateColourPaddingX,            NodeDimensions,     float)                \
  FILE          (NodeInnerStateColourPaddingY,            NodeDimensions,     float)                \
  FILE          (AutoInsertItemWidth,                     AutoInsert,         float)                \
  FILE          (AutoInsertItemHeight,                    AutoInsert,         float)                \
  FILE          (EdgeLabelColor,                          Edge,               QColor)               \
  DERIVED       (EdgeLabelBrush,                                              QBrush)               \
  FILE          (EdgeColor,                               Edge,               QColor)               \
  DERIVED       (EdgeBrush,                                                   QBrush)               \
  FILE          (PrefferedEdgeColor,                      Edge,               QColor)               \
  DERIVED       (PrefferedEdgeBrush,                                          QBrush)               \
  FILE          (SelectedEdgeColor,                       Edge,               QColor)               \
  DERIVED       (SelectedEdgeBrush,                                           QBrush)               \
  FILE          (SelectableEdgeColor,                     Edge,               QColor)               \
  DERIVED       (SelectableEdgeBrush,                                         QBrush)               \
  FILE          (HighlightForNodeInsertEdgeColor,         Edge,               QColor)               \
  DERIVED       (HighlightForNodeInsertEdgeBrush,                             QBrush)               \
  FILE          (SeveredEdgeColor,                        Edge,               QColor)               \
  DERIVED       (SeveredEdgeBrush,                                            QBrush)               \
  FILE          (DotableMarkerColor,                      Edge,               QColor)               \
  DERIVED       (DotableMarkerBrush,                                          QBrush)               \
  FILE          (EdgePenWidth,                            Edge,               int)                  \
  FILE          (PrefferedEdgePenWidth,                   Edge,               int)                  \
  FILE_READ_ONLY(SharedEdgePenWidth,                      Edge,               int)                  \
  FILE          (BypassedEdgePenWidth,                    Edge,               int)                  \
  FILE          (MinimumConnectedEdgeLength,              Edge,               float)                \
  FILE          (EdgeSensitivityFactor,                   Edge,               int)                  \
  FIXED         (EdgeClickRadius,                                             float)                \
  FILE          (EdgeNormalLength,                        Edge,               int)                  \
  FILE          (EdgeMaskLength,                          Edge,               int)                  \
  FILE          (EdgeDefaultOutputLength,                 Edge,               int)                  \
  FILE          (MaxInputCountPerNode,                    NodeDimensions,     int)                  \
  FILE          (PortTextColor,                           Ports,              QColor)               \
  DERIVED       (PortTextBrush,                                               QBrush)               \
  FILE          (PortColor,                               Ports,              QColor)               \
  FILE          (PortNoConnectionColor,                   Ports,              QColor)               \
  FILE          (PortHighlightColor,                      Ports,              QColor)               \
  FILE          (ClusteredPortColor,                      Ports,              QColor)               \
  FILE          (ClusteredPortNoConnectionColor,          Ports,              QColor)               \
  FILE          (MinimumBackdropNodeWidth,                Backdrop,           int)                  \
  FILE          (MinimumBackdropNodeHeight,               Backdrop,           int)                  \
  FIXED         (BackdropNodeBackgroundColor,                                 QColor)               \
  FILE          (BackdropNodeTitleBarColor,               Backdrop,           QColor)               \
  DERIVED       (BackdropNodeTitleBarBrush,                                   QBrush)               \
  FIXED         (BackdropNodeLightTextColor,                                  QColor)               \
  FIXED         (BackdropNodeDarkTextColor,                                   QColor)               \
  FILE          (BackdropNodeWrapAroundTopLeft,           Backdrop,           QPoint)               \
  FILE          (BackdropNodeWrapAroundTopLeftNoPadding,  Backdrop,           QPoint)               \
  FILE          (BackdropNodeWrapAroundPadding,           Backdrop,           int)                  \
  FILE          (BackdropNodeTitleBarPaddingLeftTop,      Backdrop,           QPointF)              \
  FILE          (BackdropNodeTitleBarPaddingRightBottom,  Backdrop,           QPointF)              \
  FIXED         (BackdropNodeBaseZValue,                                      float)                \
  FILE          (BackdropNodeTitleBarHeight,              Backdrop,           float)                \
  FILE          (BackdropNodeResizeAreaPadding,           Backdrop,           float)                \
  FILE          (BackdropNodeTitleTextHeight,             Backdrop,           float)                \
  FILE          (BackdropNodeResizeHoverAreaColor,        Backdrop,           QColor)               \
  DERIVED       (BackdropNodeResizeHoverAreaBrush,                            QBrush)               \
  FILE          (MinimumStickyNoteNodeHeight,             StickyNoteNode,     float)                \
  FILE          (DotNodeSize,                             DotNode,            int)                  \
  FILE          (DotDiamondNodeSize,                      DotNode,            int)                  \
  DERIVED       (NormalEdgePen,                                               QPen)                 \
  DERIVED       (PrefferedEdgePen,                                            QPen)                 \
  DERIVED       (SharedEdgePen,                                               QPen)                 \
  DERIVED       (SelectedNormalEdgePen,                                       QPen)                 \
  DERIVED       (SelectedPrefferedEdgePen,                                    QPen)                 \
  DERIVED       (SelectedSharedEdgePen,                                       QPen)                 \
  DERIVED       (SelectableNormalEdgePen,                                     QPen)                 \
  DERIVED       (SelectablePrefferedEdgePen,                                  QPen)                 \
  DERIVED       (SelectableSharedEdgePen,                                     QPen)                 \
  DERIVED       (HighlightForNodeInsertPen,                                   QPen)                 \
  DERIVED       (SeveredEdgePen,                                              QPen)                 \
  FILE          (CrossedOutBypassedEdgeColor,             Edge,               QColor)               \
  DERIVED       (CrossedOutBypassedEdgeBrush,                                 QBrush)               \
  DERIVED       (BypassedEdgePen,                                             QPen)                 \
  FILE          (ActivatedEdgeColor,                      Edge,               QColor)               \
  DERIVED       (ActivatedEdgePen,                                            QPen)                 \
  FILE          (BasicNodeColor,                          CategoryColors,     OrvColor)             \
  FILE          (ChannelNodeColor,                        CategoryColors,     OrvColor)             \
  FILE          (EnvironmentNodeColor,                    CategoryColors,     OrvColor)             \
  FILE          (FilterNodeColor,                         CategoryColors,     OrvColor)             \
  FILE          (GeometryNodeColor,                       CategoryColors,     OrvColor)             \
  FILE          (LayerNodeColor,                          CategoryColors,     OrvColor)             \
  FILE          (LightingNodeColor,                       CategoryColors,     OrvColor)             \
  FILE          (MathNodeColor,                           CategoryColors,     OrvColor)             \
  FILE          (MiscNodeColor,                           CategoryColors,     OrvColor)             \
  FILE          (PaintNodeColor,                          CategoryColors,     OrvColor)             \
  FILE          (ProceduralNodeColor,                     CategoryColors,     OrvColor)             \
  FILE          (SurfaceNodeColor,                        CategoryColors,     OrvColor)             \
  FILE          (SystemNodeColor,                         CategoryColors,     OrvColor)             \
  FILE          (MultiChannelMergeNodeColor,              MultiChannelColors, QPair<QColor,QColor>) \
  FILE          (MultiChannelBakePointNodeColor,          MultiChannelColors, QPair<QColor,QColor>) \
  FILE          (MultiChannelBottomTransparencyNodeColor, MultiChannelColors, QPair<QColor,QColor>) \
  FILE          (MultiChannelMaterialNodeColor,           MultiChannelColors, QPair<QColor,QColor>) \
  FILE          (MultiChannelInvalidNodeColor,            MultiChannelColors, QPair<QColor,QColor>) \
  FILE          (TeleportBroadcastNodeColor,              CategoryColors,     OrvColor)             \
  FILE          (TeleportReceiverNodeColor,               CategoryColors,     OrvColor)
// clang-format on
