#pragma once

#include <QObject>

class AppModel;
class CutFlowModel;
class Preferences;

/// @brief Makes the cut window's model with the session's client and the preferences: each
/// opening of the window gets a new one, which ends with the window.
class CutFlowFactory : public QObject
{
    Q_OBJECT
public:
    CutFlowFactory(AppModel &app, Preferences &prefs, QObject *parent = nullptr);

    /// A new model owned by `owner` (the window's root item), revealing files in the file manager.
    Q_INVOKABLE CutFlowModel *create(QObject *owner) const;
    /// Ends a model made here before its owner goes (a new session replaces it).
    Q_INVOKABLE void dispose(CutFlowModel *model) const;

private:
    AppModel &m_app;
    Preferences &m_prefs;
};
