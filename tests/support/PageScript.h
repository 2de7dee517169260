#pragma once

#include <nlohmann/json.hpp>

#include <QString>
#include <QStringList>

/// @brief Runs a page script of tests/web in headless Chromium (through node) and returns what
/// it reported, or a JSON object {"error": ...} with what went wrong: the script's own failure,
/// its stderr, or a timeout.
///
///   auto r = runPageScript(QStringLiteral("tests/server/share_page.mjs"), {"--url=" + url});
///   EXPECT_EQ(r.value("views", 0), 1) << r.dump();
nlohmann::json runPageScript(const QString &script, const QStringList &arguments = {}, int timeoutMs = 60000);
