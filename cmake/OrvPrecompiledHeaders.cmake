# Precompiled headers of Qt and the standard library, for builds from nothing: they take a third off. Two
# sets, each compiled once and shared by all targets with the same Qt modules. Off where ccache launches the
# compiler: it would see another precompiled header in every build folder and share nothing between them.
# No header of this project is in them, so every file still includes what it uses of ours.
if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "")
endif()
if(CMAKE_CXX_COMPILER_LAUNCHER)
    set(ORV_PRECOMPILE_DEFAULT OFF)
else()
    set(ORV_PRECOMPILE_DEFAULT ON)
endif()
option(ORV_PRECOMPILE_HEADERS "Precompile the headers of Qt" ${ORV_PRECOMPILE_DEFAULT})

set(ORV_PRECOMPILED_WIDGETS
    <algorithm> <cmath> <functional> <limits> <memory> <utility> <vector>
    <QCoreApplication> <QDir> <QFileInfo> <QHash> <QList> <QPair> <QPointer> <QSet> <QSettings> <QString>
    <QStringList> <QTimer> <QVariant> <QVector> <QtMath>
    <QAction> <QApplication> <QMenu> <QUndoStack> <QWidget>
    <QFont> <QFontMetricsF> <QImage> <QPainter> <QPainterPath> <QPen> <QPixmap> <QPolygonF>
    <QGraphicsLinearLayout> <QGraphicsScene> <QGraphicsSceneMouseEvent> <QGraphicsView> <QGraphicsWidget>
    <QStyleOptionGraphicsItem>)
set(ORV_PRECOMPILED_TESTS ${ORV_PRECOMPILED_WIDGETS} <QTemporaryDir> <QtTest>)

# orv_precompile(TARGET SET): SET is WIDGETS or TESTS, the modules that TARGET links.
function(orv_precompile TARGET SET)
    if(NOT ORV_PRECOMPILE_HEADERS)
        return()
    endif()
    set(OWNER orv_precompiled_${SET})
    if(NOT TARGET ${OWNER})
        file(WRITE ${PROJECT_BINARY_DIR}/${OWNER}.cpp "")
        add_library(${OWNER} OBJECT ${PROJECT_BINARY_DIR}/${OWNER}.cpp)
        orv_target_defaults(${OWNER})
        set_target_properties(${OWNER} PROPERTIES AUTOMOC OFF)
        target_link_libraries(${OWNER} PRIVATE Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Svg)
        if(SET STREQUAL TESTS)
            target_link_libraries(${OWNER} PRIVATE Qt5::Test)
        endif()
        target_precompile_headers(${OWNER} PRIVATE ${ORV_PRECOMPILED_${SET}})
    endif()
    target_precompile_headers(${TARGET} REUSE_FROM ${OWNER})
endfunction()
