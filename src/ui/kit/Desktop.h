#pragma once
// Small bridges between the core's texts and flags and Qt widgets.

#include "core/Forms.h"

#include <QString>

class QWidget;

// Language texts break lines with CR LF; widgets want "\n".
QString DisplayText(const QString& text);

// Keeps a window above the others, or lets it go back among them.
void SetTopMost(QWidget& window, bool flag);
