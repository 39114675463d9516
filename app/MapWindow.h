#pragma once

#include "app/MapRegion.h"
#include "results/MapPicture.h"

#include <QFrame>

#include <memory>

class DispABase;
class DispArea;
class FourPs;
class MouseC;
class QComboBox;
class QLabel;

/// The window of the map: its picture, what is under the pointer, and the mean of a region that is
/// dragged in the map or in "t/a" and shown in both. It follows each calculation of a map.
class MapWindow : public QFrame
{
    Q_OBJECT

public:
    explicit MapWindow(FourPs& panel);
    ~MapWindow() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void build();
    void watchCloud();
    void refresh();
    void draw(QPainter& painter);
    void drawRegion(QPainter& painter) const;
    void drawRegionRow(QPainter& painter, int row) const;
    void tellPointer(double x, double y);
    void endDrag(const MouseC& mouse);
    void take(std::vector<std::size_t> region);

    FourPs& m_panel;
    DispArea* m_canvas;    ///< owned by the window, as all widgets
    QComboBox* m_quantity; ///< in the order of MapQuantity
    QLabel* m_pointer;
    QLabel* m_mean;

    MapPixels m_pixels;
    std::shared_ptr<const MapGrid> m_grid;
    MapPicture m_picture;
    bool m_fresh = false; ///< what is shown is of the last map
    std::vector<std::size_t> m_region;
    std::vector<bool> m_inRegion; ///< of each pixel; empty without a region
};
