#include "app/FourPs.h"

void FourPs::clearLCFvs4PS(MouseC* mouse)
{
    Q_UNUSED(mouse)
    lcfVs4ps.clear();
    repaintDisplays();
}

void FourPs::draw(Displays::DispId id, DispABase* panel, QStylePainter* painter)
{
    Q_UNUSED(id)
    Q_UNUSED(panel)
    Q_UNUSED(painter)
}
