#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

/// What the command line asks for.
///
/// Called by  main.
/// Uses       QCommandLineParser.
/// Tells      nobody.
struct EditorOptions
{
    QString file; ///< empty: the first own sample
    QStringList searchPath;
    QString graph; ///< empty: the scope worth showing first
    QString screenshot; ///< empty: open a window
    bool isMeasurement = false; ///< replay gestures, print how long their frames take, and leave
    QSize size{1600, 1000}; ///< of the window, in pixels
    bool hasSize = false; ///< the line asks for the size
    int zoom = 0; ///< percent; 0 frames everything
    int mode = 0; ///< OrvNgExtendedNode::PortListMode
    QString error; ///< one sentence when the line makes no sense; the rest is then unset
    QString answer; ///< what to print instead of running: help or version

    /// arguments begins with the program's name. Needs the application object, for its name.
    static EditorOptions parse(const QStringList& arguments);
};
