#pragma once

#include "results/GraphTable.h"

#include <QMenu>

#include <functional>

class DispArea;
class FourPs;

/// The context menu of a graph: its picture and its numbers as files, and the whole range again.
/// Belongs to the canvas.
class GraphMenu : public QMenu
{
    Q_OBJECT

public:
    /// @param panel  tells what was written or refused; has to stay as long as the canvas
    /// @param title  of the graph
    /// @param table  makes its numbers
    GraphMenu(FourPs& panel, DispArea& canvas, const QString& title,
              const std::function<GraphTable()>& table);

private:
    void addEntry(const char* name, const QString& text, void (GraphMenu::*entry)());
    void copyPicture();
    void savePicture();
    void saveData();
    void resetRange();

    void writePicture(const QString& path);
    void writeData(const QString& path);
    bool hasData();

    FourPs& m_panel;
    DispArea& m_canvas;
    QString m_title;
    std::function<GraphTable()> m_table;
};
