#include "CutFlowFactory.h"

#include "FileReveal.h"

#include <AppModel.h>
#include <CutFlowModel.h>

CutFlowFactory::CutFlowFactory(AppModel &app, Preferences &prefs, QObject *parent)
    : QObject(parent)
    , m_app(app)
    , m_prefs(prefs)
{
}

CutFlowModel *CutFlowFactory::create(QObject *owner) const
{
    auto *model = new CutFlowModel(m_app.client(), &m_prefs, owner);
    model->setReveal(&FileReveal::show);
    return model;
}

void CutFlowFactory::dispose(CutFlowModel *model) const
{
    if (model)
        model->deleteLater();
}
