#include "PhotosImportController.h"

void PhotosImportController::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    Q_EMIT expandedChanged();
}
