#pragma once

class FourPs;

/// Gives every control of the panel a name of its own for screen readers, made of the texts of the
/// labels around it, so that it is in the window's language: row and column for the cells of the
/// point table, the label and the button for a file selector.
void nameControls(FourPs& panel);

/// Lets Tab go through the V.Point column at the marked row only, as through any group of buttons.
void enterMarkedPoint(FourPs& panel);

/// Lets Tab go through the panel in the order of its form, the point table row by row.
void orderTabs(FourPs& panel);
