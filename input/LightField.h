#pragma once

class QWidget;

/// Gives a field whose background is light in every colour scheme black text: that of a dark scheme
/// is light as well.
void setBlackText(QWidget& field);
