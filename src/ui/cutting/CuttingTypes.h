#pragma once

class CutFlowFactory;

/// Makes the cut window's types known to QML under "Aeroloom.Cutting": CutFlowModel and
/// CutRowsModel (made in C++ only) and the singleton `CutFlows` that makes the models. The
/// screens are in the resource folder "qrc:/aeroloom/cutting/" (CutRoot is the window's root,
/// CutWindowView its screens).
void registerCuttingTypes(CutFlowFactory &factory);
