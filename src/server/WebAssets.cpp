#include "WebAssets.h"

#include "Names.h"

#include <httplib.h>

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>

#include <map>

namespace {
constexpr const char *root = ":/aeroloom-web/";

/// Everything under the resource root, read once: the files are small and never change while
/// the server runs.
std::map<std::string, WebAssets::Asset> load()
{
    std::map<std::string, WebAssets::Asset> assets;
    const QString prefix = QString::fromLatin1(root);
    QDirIterator it(prefix, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(24);
        const QString name = path.mid(prefix.size());
        assets.emplace(name.toStdString(),
                       WebAssets::Asset{bytes.toStdString(), Names::contentType(name.toStdString()), "\"" + digest.toStdString() + "\""});
    }
    return assets;
}
} // namespace

namespace WebAssets {

const Asset *find(const std::string &name)
{
    static const std::map<std::string, Asset> assets = load();
    const auto it = assets.find(name);
    return it == assets.end() ? nullptr : &it->second;
}

void serve(const httplib::Request &req, httplib::Response &res, const Asset &asset)
{
    // Revalidated on every use, so a newer server is never hidden behind an old copy; the
    // digest keeps an unchanged file from travelling again.
    res.set_header("Cache-Control", "no-cache");
    res.set_header("ETag", asset.etag);
    res.set_header("X-Content-Type-Options", "nosniff");
    if (req.get_header_value("If-None-Match") == asset.etag) {
        res.status = 304;
        return;
    }
    res.status = 200;
    res.set_content(asset.bytes, asset.type);
}

} // namespace WebAssets
