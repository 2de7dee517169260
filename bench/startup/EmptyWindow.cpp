// The baseline: a QML engine showing one empty window, quitting on its first frame.
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { width: 1200; height: 780; visible: true; color: \"#0B1224\" }");
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window)
        return 1;
    QObject::connect(window, &QQuickWindow::frameSwapped, &app, [] {
        std::printf("first-frame\n");
        std::fflush(stdout);
        QCoreApplication::exit(0);
    }, Qt::SingleShotConnection);
    return app.exec();
}
